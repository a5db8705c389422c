#include <algorithm>

#include "acgi.h"
#include "dbents.h"
#include "dbfiler.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbLine, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, LINE,
                        ObjectDBX Classes)

AcGePoint3d AcDbLine::startPoint() const {
  assertReadEnabled();
  return start_;
}

AcGePoint3d AcDbLine::endPoint() const {
  assertReadEnabled();
  return end_;
}

Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) {
  assertWriteEnabled();
  start_ = point;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) {
  assertWriteEnabled();
  end_ = point;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint3d(start_);
  filer->writePoint3d(end_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLine::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint3d(&start_);
  filer->readPoint3d(&end_);
  return filer->filerStatus();
}

Adesk::Boolean AcDbLine::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const AcGePoint3d points[2] = {start_, end_};
  draw->geometry().polyline(2, points);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbLine::subGetGeomExtents(AcDbExtents& extents) const {
  assertReadEnabled();
  extents = AcDbExtents();
  extents.addPoint(start_);
  return extents.addPoint(end_);
}

Acad::ErrorStatus AcDbLine::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                              const AcGePoint3d& pickPoint, const AcGePoint3d&,
                                              const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode == AcDb::kOsModeEnd) {
    snapPoints.append(start_);
    snapPoints.append(end_);
  } else if (osnapMode == AcDb::kOsModeMid) {
    snapPoints.append(start_ + (end_ - start_) * 0.5);
  } else if (osnapMode == AcDb::kOsModeNear) {
    const AcGeVector3d along = end_ - start_;
    const double length = along.lengthSqrd();
    const double t = length > 0 ? (pickPoint - start_).dotProduct(along) / length : 0.0;
    snapPoints.append(start_ + along * std::clamp(t, 0.0, 1.0));
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                             AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(start_);
  gripPoints.append(start_ + (end_ - start_) * 0.5);
  gripPoints.append(end_);
  return Acad::eOk;
}

/// The ends move by themselves, the middle moves both.
Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
  assertWriteEnabled();
  const bool both = indices.contains(1);
  if (both || indices.contains(0)) start_ += offset;
  if (both || indices.contains(2)) end_ += offset;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  start_.transformBy(transform);
  end_.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
