#include <cmath>

#include "acgi.h"
#include "base/text.h"
#include "dbcurve.h"
#include "dbfiler.h"
#include "dbsymtb.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/objectaccess.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, POINT,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbEllipse, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        ELLIPSE, ObjectDBX Classes)

AcGePoint3d AcDbPoint::position() const {
  assertReadEnabled();
  return position_;
}

Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
  assertWriteEnabled();
  position_ = position;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  return status == Acad::eOk ? filer->writePoint3d(position_) : status;
}

Acad::ErrorStatus AcDbPoint::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  return status == Acad::eOk ? filer->readPoint3d(&position_) : status;
}

Adesk::Boolean AcDbPoint::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  // Points that only define dimensions are dots, however others look.
  const auto* layer = AcDbLayerTableRecord::cast(tarn::host::peek(layerId()));
  const ACHAR* name = L"";
  const bool isDot = layer != nullptr && layer->getName(name) == Acad::eOk &&
                     tarn::equalsIgnoreCase(std::wstring_view(name), L"Defpoints");
  const AcGePoint3d points[] = {position_, position_};
  draw->geometry().polyline(isDot ? 2 : 1, points);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbPoint::subGetGeomExtents(AcDbExtents& extents) const {
  assertReadEnabled();
  return extents.set(position_, position_);
}

Acad::ErrorStatus AcDbPoint::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                              AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(position_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subTransformBy(const AcGeMatrix3d& transform) {
  return setPosition(transform * position_);
}

AcGePoint3d AcDbEllipse::center() const {
  assertReadEnabled();
  return center_;
}
AcGeVector3d AcDbEllipse::majorAxis() const {
  assertReadEnabled();
  return major_;
}
AcGeVector3d AcDbEllipse::normal() const {
  assertReadEnabled();
  return normal_;
}
double AcDbEllipse::radiusRatio() const {
  assertReadEnabled();
  return ratio_;
}
double AcDbEllipse::startParam() const {
  assertReadEnabled();
  return start_;
}
double AcDbEllipse::endParam() const {
  assertReadEnabled();
  return end_;
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                                   const AcGeVector3d& majorAxis, double radiusRatio,
                                   double startParam, double endParam) {
  assertWriteEnabled();
  center_ = center;
  normal_ = normal;
  major_ = majorAxis;
  ratio_ = radiusRatio;
  start_ = startParam;
  end_ = endParam;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint3d(center_);
  filer->writeVector3d(normal_);
  filer->writeVector3d(major_);
  for (const double value : {ratio_, start_, end_}) filer->writeDouble(value);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbEllipse::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint3d(&center_);
  filer->readVector3d(&normal_);
  filer->readVector3d(&major_);
  for (double* value : {&ratio_, &start_, &end_}) filer->readDouble(value);
  return filer->filerStatus();
}

Adesk::Boolean AcDbEllipse::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  const AcGeVector3d minor = normal_.crossProduct(major_) * ratio_;
  std::vector<AcGePoint3d> points = tarn::host::arcPoints(AcGePoint3d::kOrigin, 1, start_, end_);
  for (AcGePoint3d& p : points) p = center_ + major_ * p.x + minor * p.y;
  draw->geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbEllipse::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbEllipse::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                AcDbIntArray&) const {
  assertReadEnabled();
  gripPoints.append(center_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const AcGeVector3d minor = transform * normal_.crossProduct(major_);
  const AcGeVector3d major = transform * major_;
  const AcGeVector3d normal = major.crossProduct(minor);
  if (normal.length() > 0) normal_ = normal.normal();
  major_ = major;
  center_.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
