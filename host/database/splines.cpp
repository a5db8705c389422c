#include "acgi.h"
#include "dbspline.h"
#include "host/database/drawnextents.h"
#include "host/database/fieldfiling.h"
#include "host/geometry/spline.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbSpline, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        SPLINE, ObjectDBX Classes)

namespace {

template <typename Values, typename Filing>
void eachValue(Values& values, Filing&& filing) {
  filing.all(values.flags, values.degree, values.knots, values.control, values.weights, values.fit,
             values.startTangent, values.endTangent);
}

bool isByControl(const AcDbSpline::Values& values) {
  return values.control.size() > 1;
}

}  // namespace

const AcDbSpline::Values& AcDbSpline::values() const {
  assertReadEnabled();
  return values_;
}

Acad::ErrorStatus AcDbSpline::setValues(Values values) {
  assertWriteEnabled();
  values_ = std::move(values);
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  eachValue(values_, tarn::host::FieldWriter(*filer));
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  eachValue(values_, tarn::host::FieldReader(*filer));
  return filer->filerStatus();
}

std::vector<AcGePoint3d> AcDbSpline::points() const {
  if (!isByControl(values_)) {
    return tarn::host::pointsThrough(values_.fit, values_.startTangent, values_.endTangent);
  }
  return tarn::host::pointsAlong({values_.degree, values_.knots, values_.control, values_.weights});
}

Adesk::Boolean AcDbSpline::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const std::vector<AcGePoint3d> line = points();
  draw->geometry().polyline(static_cast<Adesk::UInt32>(line.size()), line.data());
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbSpline::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbSpline::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                const AcGePoint3d&, const AcGePoint3d&,
                                                const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  const std::vector<AcGePoint3d> line = points();
  if (osnapMode != AcDb::kOsModeEnd || line.empty()) return Acad::eOk;
  snapPoints.append(line.front());
  snapPoints.append(line.back());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                               AcDbIntArray&) const {
  assertReadEnabled();
  for (const AcGePoint3d& point : isByControl(values_) ? values_.control : values_.fit) {
    gripPoints.append(point);
  }
  return Acad::eOk;
}

/// A pulled control point leaves the fit points behind; they go.
Acad::ErrorStatus AcDbSpline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
  assertWriteEnabled();
  std::vector<AcGePoint3d>& points = isByControl(values_) ? values_.control : values_.fit;
  const bool isAll = static_cast<size_t>(indices.length()) == points.size();
  if (isAll) return transformBy(AcGeMatrix3d::translation(offset));
  for (const int index : indices) points[static_cast<size_t>(index)] += offset;
  if (isByControl(values_)) values_.fit.clear();
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  for (std::vector<AcGePoint3d>* points : {&values_.control, &values_.fit}) {
    for (AcGePoint3d& point : *points) point.transformBy(transform);
  }
  values_.startTangent = transform * values_.startTangent;
  values_.endTangent = transform * values_.endTangent;
  recordGraphicsModified();
  return Acad::eOk;
}
