#include <cmath>

#include "acgi.h"
#include "dbcurve.h"
#include "dbfiler.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbCircle, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        CIRCLE, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbArc, AcDbCircle, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, ARC,
                        ObjectDBX Classes)

using tarn::host::changeOf;
using tarn::host::entityToWorld;
using tarn::host::OwnChange;

namespace {

constexpr double kTurn = 6.283185307179586;

}  // namespace

AcDbCircle::AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
    : center_(entityToWorld(normal).inverse() * center),
      normal_(normal.normal()),
      radius_(radius) {}

AcGePoint3d AcDbCircle::center() const {
  assertReadEnabled();
  return entityToWorld(normal_) * center_;
}

Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& center) {
  assertWriteEnabled();
  center_ = entityToWorld(normal_).inverse() * center;
  recordGraphicsModified();
  return Acad::eOk;
}

double AcDbCircle::radius() const {
  assertReadEnabled();
  return radius_;
}

Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
  assertWriteEnabled();
  if (!(radius > 0)) return Acad::eInvalidInput;
  radius_ = radius;
  recordGraphicsModified();
  return Acad::eOk;
}

AcGeVector3d AcDbCircle::normal() const {
  assertReadEnabled();
  return normal_;
}

AcGePoint3d AcDbCircle::ownCenter() const {
  assertReadEnabled();
  return center_;
}

void AcDbCircle::setOwn(const AcGePoint3d& ownCenter, const AcGeVector3d& normal, double radius) {
  assertWriteEnabled();
  center_ = ownCenter;
  normal_ = normal;
  radius_ = radius;
  recordGraphicsModified();
}

AcGePoint3d AcDbCircle::pointAt(double angle) const {
  return entityToWorld(normal_) *
         (center_ + AcGeVector3d(std::cos(angle), std::sin(angle), 0) * radius_);
}

Acad::ErrorStatus AcDbCircle::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint3d(center_);
  filer->writeVector3d(normal_);
  filer->writeDouble(radius_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint3d(&center_);
  filer->readVector3d(&normal_);
  filer->readDouble(&radius_);
  return filer->filerStatus();
}

Adesk::Boolean AcDbCircle::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  draw->geometry().circle(center(), radius_, normal_);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbCircle::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbCircle::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                                const AcGePoint3d&, const AcGePoint3d&,
                                                const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode == AcDb::kOsModeCen) snapPoints.append(center());
  if (osnapMode == AcDb::kOsModeQuad) {
    for (int quarter = 0; quarter < 4; ++quarter) snapPoints.append(pointAt(quarter * kTurn / 4));
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                               AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(center());
  for (int quarter = 0; quarter < 4; ++quarter) gripPoints.append(pointAt(quarter * kTurn / 4));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const OwnChange change = changeOf(normal_, transform);
  center_.transformBy(change.map);
  normal_ = change.normal;
  radius_ *= change.scale;
  recordGraphicsModified();
  return Acad::eOk;
}

AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
                 double startAngle, double endAngle)
    : AcDbCircle(center, normal, radius), start_(startAngle), end_(endAngle) {}

double AcDbArc::startAngle() const {
  assertReadEnabled();
  return start_;
}

double AcDbArc::endAngle() const {
  assertReadEnabled();
  return end_;
}

Acad::ErrorStatus AcDbArc::setStartAngle(double radians) {
  assertWriteEnabled();
  start_ = radians;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::setEndAngle(double radians) {
  assertWriteEnabled();
  end_ = radians;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbCircle::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeDouble(start_);
  return filer->writeDouble(end_);
}

Acad::ErrorStatus AcDbArc::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbCircle::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readDouble(&start_);
  return filer->readDouble(&end_);
}

Adesk::Boolean AcDbArc::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  std::vector<AcGePoint3d> points = tarn::host::arcPoints(ownCenter(), radius(), start_, end_);
  tarn::host::transformAll(points, entityToWorld(normal()));
  draw->geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbArc::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbArc::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                             const AcGePoint3d&, const AcGePoint3d&,
                                             const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                             AcDbIntArray&) const {
  assertReadEnabled();
  if (osnapMode == AcDb::kOsModeCen) snapPoints.append(center());
  if (osnapMode == AcDb::kOsModeEnd) {
    snapPoints.append(pointAt(start_));
    snapPoints.append(pointAt(end_));
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                            AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(center());
  gripPoints.append(pointAt(start_));
  gripPoints.append(pointAt(end_));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const OwnChange change = changeOf(normal(), transform);
  start_ = change.turned(start_);
  end_ = change.turned(end_);
  return AcDbCircle::subTransformBy(transform);
}
