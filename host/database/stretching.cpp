// How grips stretch curves.
#include <cmath>

#include "dbcurve.h"
#include "dbpl.h"
#include "host/database/entitysystem.h"

namespace {

AcGeMatrix3d worldToEntity(const AcGeVector3d& normal) {
  return tarn::host::entityToWorld(normal).inverse();
}

}  // namespace

/// The centre moves the circle, a quadrant changes the radius.
Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
  assertWriteEnabled();
  if (indices.contains(0)) return transformBy(AcGeMatrix3d::translation(offset));
  AcGePoint3dArray grips;
  AcDbIntArray modes;
  AcDbIntArray ids;
  getGripPoints(grips, modes, ids);
  const double radius = (grips[indices.first()] + offset).distanceTo(center());
  return setRadius(radius);
}

/// The centre moves the arc; an end goes along the circle to where it is pulled.
Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray& indices,
                                               const AcGeVector3d& offset) {
  assertWriteEnabled();
  if (indices.contains(0)) return transformBy(AcGeMatrix3d::translation(offset));
  const auto pulled = [&](double angle) {
    const AcGeVector3d own = worldToEntity(normal()) * (pointAt(angle) + offset - center());
    return std::atan2(own.y, own.x);
  };
  if (indices.contains(1)) setStartAngle(pulled(startAngle()));
  if (indices.contains(2)) setEndAngle(pulled(endAngle()));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
  assertWriteEnabled();
  const AcGeVector3d own = inSpace_ ? offset : worldToEntity(normal_) * offset;
  for (const int index : indices) {
    AcGePoint3d& point = vertices_[static_cast<size_t>(index)].point;
    point += own;
    if (!inSpace_) point.z = 0;
  }
  recordGraphicsModified();
  return Acad::eOk;
}
