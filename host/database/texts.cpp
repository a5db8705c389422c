#include <cmath>

#include "acgi.h"
#include "dbfiler.h"
#include "dbtext.h"
#include "host/database/drawnextents.h"
#include "host/database/entitysystem.h"
#include "host/database/plaintext.h"
#include "host/database/recordfiling.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbText, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, TEXT,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbMText, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, MTEXT,
                        ObjectDBX Classes)

using tarn::host::OwnChange;

void AcDbTextLine::draw(AcGiWorldDraw& draw) const {
  const std::wstring shown = tarn::host::plainLine(text);
  const AcGeMatrix3d world = tarn::host::entityToWorld(normal);
  const AcGeVector3d along(std::cos(rotation), std::sin(rotation), 0);
  draw.geometry().text(world * position, normal, world * along, height, widthFactor, oblique,
                       shown.c_str());
}

void AcDbTextLine::transformBy(const AcGeMatrix3d& transform) {
  const OwnChange change = tarn::host::changeOf(normal, transform);
  position.transformBy(change.map);
  alignment.transformBy(change.map);
  rotation = change.turned(rotation);
  height *= change.scale;
  normal = change.normal;
}

void AcDbTextLine::write(AcDbDwgFiler& filer) const {
  filer.writePoint3d(position);
  filer.writePoint3d(alignment);
  filer.writeVector3d(normal);
  for (const double value : {height, rotation, widthFactor, oblique}) filer.writeDouble(value);
  for (const short value : {horizontal, vertical, generation}) filer.writeInt16(value);
  filer.writeHardPointerId(style);
  filer.writeString(text.c_str());
}

void AcDbTextLine::read(AcDbDwgFiler& filer) {
  filer.readPoint3d(&position);
  filer.readPoint3d(&alignment);
  filer.readVector3d(&normal);
  for (double* value : {&height, &rotation, &widthFactor, &oblique}) filer.readDouble(value);
  for (short* value : {&horizontal, &vertical, &generation}) filer.readInt16(value);
  filer.readHardPointerId(&style);
  tarn::host::readText(filer, text);
}

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, double height, double rotation) {
  line_.position = position;
  line_.height = height;
  line_.rotation = rotation;
  line_.text = text != nullptr ? text : L"";
}

const AcDbTextLine& AcDbText::line() const {
  assertReadEnabled();
  return line_;
}

Acad::ErrorStatus AcDbText::setLine(const AcDbTextLine& line) {
  assertWriteEnabled();
  line_ = line;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
  assertWriteEnabled();
  line_.text = text != nullptr ? text : L"";
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  line_.write(*filer);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  line_.read(*filer);
  return filer->filerStatus();
}

Adesk::Boolean AcDbText::subWorldDraw(AcGiWorldDraw* draw) {
  line().draw(*draw);
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbText::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                             AcDbIntArray&) const {
  gripPoints.append(tarn::host::entityToWorld(line().normal) * line().position);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  line_.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}

AcGePoint3d AcDbMText::location() const {
  assertReadEnabled();
  return location_;
}
const std::wstring& AcDbMText::contents() const {
  assertReadEnabled();
  return contents_;
}
AcGeVector3d AcDbMText::normal() const {
  assertReadEnabled();
  return normal_;
}
AcGeVector3d AcDbMText::direction() const {
  assertReadEnabled();
  return direction_;
}
double AcDbMText::textHeight() const {
  assertReadEnabled();
  return height_;
}
short AcDbMText::attachment() const {
  assertReadEnabled();
  return attachment_;
}
double AcDbMText::lineSpacingFactor() const {
  assertReadEnabled();
  return spacing_;
}

Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& location) {
  assertWriteEnabled();
  location_ = location;
  recordGraphicsModified();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setContents(const ACHAR* contents) {
  assertWriteEnabled();
  contents_ = contents != nullptr ? contents : L"";
  recordGraphicsModified();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& normal) {
  assertWriteEnabled();
  normal_ = normal;
  recordGraphicsModified();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d& direction) {
  assertWriteEnabled();
  direction_ = direction;
  recordGraphicsModified();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
  assertWriteEnabled();
  height_ = height;
  recordGraphicsModified();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setAttachment(short attachment) {
  assertWriteEnabled();
  attachment_ = attachment;
  recordGraphicsModified();
  return Acad::eOk;
}
AcDbObjectId AcDbMText::textStyle() const {
  assertReadEnabled();
  return style_;
}
Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
  assertWriteEnabled();
  style_ = style;
  recordGraphicsModified();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setLineSpacingFactor(double factor) {
  assertWriteEnabled();
  spacing_ = factor;
  recordGraphicsModified();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint3d(location_);
  filer->writeVector3d(normal_);
  filer->writeVector3d(direction_);
  filer->writeDouble(height_);
  filer->writeDouble(spacing_);
  filer->writeInt16(attachment_);
  filer->writeHardPointerId(style_);
  return filer->writeString(contents_.c_str());
}

Acad::ErrorStatus AcDbMText::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint3d(&location_);
  filer->readVector3d(&normal_);
  filer->readVector3d(&direction_);
  filer->readDouble(&height_);
  filer->readDouble(&spacing_);
  filer->readInt16(&attachment_);
  filer->readHardPointerId(&style_);
  return tarn::host::readText(*filer, contents_);
}

Adesk::Boolean AcDbMText::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  constexpr double kLineDistance = 5.0 / 3;
  constexpr double kWidthOfLetter = 0.8;  // an estimate; the database knows no fonts
  const std::vector<std::wstring> lines = tarn::host::plainLines(contents_);
  const AcGeVector3d along = direction_.normal();
  const AcGeVector3d up = normal_.crossProduct(along).normal();
  const double step = kLineDistance * height_ * (spacing_ > 0 ? spacing_ : 1);
  const double whole = height_ + step * static_cast<double>(lines.size() - 1);
  const int row = (attachment_ - 1) / 3;
  const int column = (attachment_ - 1) % 3;
  double down = height_ - whole * row / 2.0;
  for (const std::wstring& line : lines) {
    const double length = kWidthOfLetter * height_ * static_cast<double>(line.size());
    const AcGePoint3d at = location_ - up * down - along * (length * column / 2.0);
    draw->geometry().text(at, normal_, along, height_, 1, 0, line.c_str());
    down += step;
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbMText::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}

Acad::ErrorStatus AcDbMText::subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray&,
                                              AcDbIntArray&) const {
  gripPoints.append(location());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subTransformBy(const AcGeMatrix3d& transform) {
  assertWriteEnabled();
  const AcGeVector3d up = transform * normal_.crossProduct(direction_);
  const AcGeVector3d along = transform * direction_;
  const double scale = direction_.length() > 0 ? along.length() / direction_.length() : 1;
  const AcGeVector3d normal = along.crossProduct(up);
  if (normal.length() > 0) normal_ = normal.normal();
  direction_ = along.length() > 0 ? along / (scale > 0 ? scale : 1) : direction_;
  height_ *= scale;
  location_.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
