#include "acgi.h"
#include "dbfiler.h"
#include "dbtrace.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbTrace, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, TRACE,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbSolid, AcDbTrace, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, SOLID,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbFace, AcDbTrace, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, 3DFACE,
                        ObjectDBX Classes)

using tarn::host::entityToWorld;

const AcDbTrace::Points& AcDbTrace::ownPoints() const {
  assertReadEnabled();
  return points_;
}

AcGeVector3d AcDbTrace::normal() const {
  assertReadEnabled();
  return normal_;
}

Acad::ErrorStatus AcDbTrace::setOwn(const Points& ownPoints, const AcGeVector3d& normal) {
  assertWriteEnabled();
  points_ = ownPoints;
  normal_ = normal;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  for (const AcGePoint3d& point : points_) filer->writePoint3d(point);
  return filer->writeVector3d(normal_);
}

Acad::ErrorStatus AcDbTrace::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  for (AcGePoint3d& point : points_) filer->readPoint3d(&point);
  return filer->readVector3d(&normal_);
}

Adesk::Boolean AcDbTrace::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const AcGeMatrix3d world = entityToWorld(normal_);
  const AcGePoint3d rim[] = {world * points_[0], world * points_[1], world * points_[3],
                             world * points_[2]};
  draw->geometry().polygon(4, rim);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbTrace::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbTrace::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                               const AcGePoint3d&, const AcGePoint3d&,
                                               const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                               AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode != AcDb::kOsModeEnd) return Acad::eOk;
  for (const AcGePoint3d& point : points_) snapPoints.append(entityToWorld(normal_) * point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                              AcDbIntArray&) const {
  assertReadEnabled();
  for (const AcGePoint3d& point : points_) gripPoints.append(entityToWorld(normal_) * point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                 const AcGeVector3d& offset) {
  assertWriteEnabled();
  const AcGeVector3d own = entityToWorld(normal_).inverse() * offset;
  for (const int index : indices) points_[static_cast<size_t>(index)] += own;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTrace::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const tarn::host::OwnChange change = tarn::host::changeOf(normal_, transform);
  for (AcGePoint3d& point : points_) point.transformBy(change.map);
  normal_ = change.normal;
  recordGraphicsModified();
  return Acad::eOk;
}

short AcDbFace::hiddenEdges() const {
  assertReadEnabled();
  return hidden_;
}

void AcDbFace::setHiddenEdges(short edges) {
  assertWriteEnabled();
  hidden_ = edges;
  recordGraphicsModified();
}

Acad::ErrorStatus AcDbFace::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbTrace::dwgOutFields(filer);
  return status == Acad::eOk ? filer->writeInt16(hidden_) : status;
}

Acad::ErrorStatus AcDbFace::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbTrace::dwgInFields(filer);
  return status == Acad::eOk ? filer->readInt16(&hidden_) : status;
}

Adesk::Boolean AcDbFace::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  for (size_t i = 0; i < points_.size(); ++i) {
    if ((hidden_ >> i & 1) != 0) continue;
    const AcGePoint3d edge[] = {points_[i], points_[(i + 1) % points_.size()]};
    if ((edge[1] - edge[0]).length() > 0) draw->geometry().polyline(2, edge);
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbFace::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  for (AcGePoint3d& point : points_) point.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
