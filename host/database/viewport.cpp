#include "acgi.h"
#include "dbents.h"
#include "dbfiler.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbViewport, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        VIEWPORT, ObjectDBX Classes)

namespace {

/// The number of the viewport that stands for the sheet itself.
constexpr Adesk::Int16 kSheetNumber = 1;

}  // namespace

AcGePoint3d AcDbViewport::centerPoint() const {
  assertReadEnabled();
  return center_;
}
Acad::ErrorStatus AcDbViewport::setCenterPoint(const AcGePoint3d& center) {
  assertWriteEnabled();
  center_ = center;
  recordGraphicsModified();
  return Acad::eOk;
}
double AcDbViewport::width() const {
  assertReadEnabled();
  return width_;
}
Acad::ErrorStatus AcDbViewport::setWidth(double width) {
  if (!(width > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  width_ = width;
  recordGraphicsModified();
  return Acad::eOk;
}
double AcDbViewport::height() const {
  assertReadEnabled();
  return height_;
}
Acad::ErrorStatus AcDbViewport::setHeight(double height) {
  if (!(height > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  height_ = height;
  recordGraphicsModified();
  return Acad::eOk;
}
Adesk::Int16 AcDbViewport::number() const {
  assertReadEnabled();
  return number_;
}
void AcDbViewport::setNumber(Adesk::Int16 number) {
  assertWriteEnabled();
  number_ = number;
}
bool AcDbViewport::isOn() const {
  assertReadEnabled();
  return on_;
}
Acad::ErrorStatus AcDbViewport::setOn() {
  assertWriteEnabled();
  on_ = true;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbViewport::setOff() {
  assertWriteEnabled();
  on_ = false;
  return Acad::eOk;
}
AcGePoint2d AcDbViewport::viewCenter() const {
  assertReadEnabled();
  return viewCenter_;
}
Acad::ErrorStatus AcDbViewport::setViewCenter(const AcGePoint2d& center) {
  assertWriteEnabled();
  viewCenter_ = center;
  return Acad::eOk;
}
double AcDbViewport::viewHeight() const {
  assertReadEnabled();
  return viewHeight_;
}
Acad::ErrorStatus AcDbViewport::setViewHeight(double height) {
  if (!(height > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  viewHeight_ = height;
  return Acad::eOk;
}
double AcDbViewport::twistAngle() const {
  assertReadEnabled();
  return twist_;
}
Acad::ErrorStatus AcDbViewport::setTwistAngle(double angle) {
  assertWriteEnabled();
  twist_ = angle;
  return Acad::eOk;
}
AcGePoint3d AcDbViewport::viewTarget() const {
  assertReadEnabled();
  return target_;
}
Acad::ErrorStatus AcDbViewport::setViewTarget(const AcGePoint3d& target) {
  assertWriteEnabled();
  target_ = target;
  return Acad::eOk;
}
AcGeVector3d AcDbViewport::viewDirection() const {
  assertReadEnabled();
  return direction_;
}
Acad::ErrorStatus AcDbViewport::setViewDirection(const AcGeVector3d& direction) {
  assertWriteEnabled();
  direction_ = direction;
  return Acad::eOk;
}
double AcDbViewport::customScale() const {
  assertReadEnabled();
  return height_ / viewHeight_;
}

AcRxObject* AcDbViewport::clone() const {
  assertReadEnabled();
  auto* copy = new AcDbViewport;
  copy->center_ = center_;
  copy->width_ = width_;
  copy->height_ = height_;
  copy->on_ = on_;
  copy->viewCenter_ = viewCenter_;
  copy->viewHeight_ = viewHeight_;
  copy->twist_ = twist_;
  copy->target_ = target_;
  copy->direction_ = direction_;
  return copy;
}

Acad::ErrorStatus AcDbViewport::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint3d(center_);
  filer->writeDouble(width_);
  filer->writeDouble(height_);
  filer->writeInt16(number_);
  filer->writeBool(on_);
  filer->writePoint2d(viewCenter_);
  filer->writeDouble(viewHeight_);
  filer->writeDouble(twist_);
  filer->writePoint3d(target_);
  filer->writeVector3d(direction_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbViewport::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint3d(&center_);
  filer->readDouble(&width_);
  filer->readDouble(&height_);
  filer->readInt16(&number_);
  filer->readBool(&on_);
  filer->readPoint2d(&viewCenter_);
  filer->readDouble(&viewHeight_);
  filer->readDouble(&twist_);
  filer->readPoint3d(&target_);
  return filer->readVector3d(&direction_);
}

Adesk::Boolean AcDbViewport::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  if (number_ == kSheetNumber) return Adesk::kTrue;
  const double w = width_ / 2;
  const double h = height_ / 2;
  const AcGePoint3d frame[5] = {{center_.x - w, center_.y - h, 0},
                                {center_.x + w, center_.y - h, 0},
                                {center_.x + w, center_.y + h, 0},
                                {center_.x - w, center_.y + h, 0},
                                {center_.x - w, center_.y - h, 0}};
  draw->geometry().polyline(5, frame);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbViewport::subGetGeomExtents(AcDbExtents& extents) const {
  assertReadEnabled();
  if (number_ == kSheetNumber) return Acad::eInvalidExtents;
  const AcGeVector3d half(width_ / 2, height_ / 2, 0);
  return extents.set(center_ - half, center_ + half);
}

Acad::ErrorStatus AcDbViewport::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                                 AcDbIntArray&) const {
  assertReadEnabled();
  for (const double x : {-0.5, 0.5}) {
    for (const double y : {-0.5, 0.5}) {
      gripPoints.append(center_ + AcGeVector3d(x * width_, y * height_, 0));
    }
  }
  return Acad::eOk;
}

/// A viewport moves and grows with its centre; it stays upright, and what it shows stays.
Acad::ErrorStatus AcDbViewport::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const AcGePoint3d corner = center_ + AcGeVector3d(width_, 0, 0);
  AcGePoint3d moved = corner;
  moved.transformBy(transform);
  center_.transformBy(transform);
  const double scale = (moved - center_).length() / width_;
  width_ *= scale;
  height_ *= scale;
  recordGraphicsModified();
  return Acad::eOk;
}
