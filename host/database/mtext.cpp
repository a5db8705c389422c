// Texts of several lines.
#include "acgi.h"
#include "dbfiler.h"
#include "dbsymtb.h"
#include "dbtext.h"
#include "host/database/blockdraw.h"
#include "host/database/drawnextents.h"
#include "host/database/fieldfiling.h"
#include "host/database/objectaccess.h"
#include "host/database/paragraphs.h"
#include "host/database/recordfiling.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbMText, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, MTEXT,
                        ObjectDBX Classes)

template <typename Filing>
void eachField(AcDbMTextColumns& columns, Filing& filing) {
  filing.all(columns.count, columns.width, columns.gap, columns.height, columns.heights);
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
double AcDbMText::width() const {
  assertReadEnabled();
  return width_;
}
AcDbObjectId AcDbMText::textStyle() const {
  assertReadEnabled();
  return style_;
}
double AcDbMText::lineSpacingFactor() const {
  assertReadEnabled();
  return spacing_;
}

const AcDbMTextColumns& AcDbMText::columns() const {
  assertReadEnabled();
  return columns_;
}

Acad::ErrorStatus AcDbMText::setColumns(AcDbMTextColumns columns) {
  assertWriteEnabled();
  columns_ = std::move(columns);
  recordGraphicsModified();
  return Acad::eOk;
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
Acad::ErrorStatus AcDbMText::setWidth(double width) {
  assertWriteEnabled();
  width_ = width;
  recordGraphicsModified();
  return Acad::eOk;
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
  filer->writeDouble(width_);
  filer->writeHardPointerId(style_);
  filer->writeInt16(attachment_);
  tarn::host::FieldWriter write(*filer);
  write(columns_);
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
  filer->readDouble(&width_);
  filer->readHardPointerId(&style_);
  filer->readInt16(&attachment_);
  tarn::host::FieldReader read(*filer);
  read(columns_);
  return tarn::host::readText(*filer, contents_);
}

Adesk::Boolean AcDbMText::subWorldDraw(AcGiWorldDraw* draw) {
  assertReadEnabled();
  tarn::host::ParagraphStyle style;
  style.height = height_;
  style.width = width_;
  style.attachment = attachment_;
  style.spacing = spacing_ > 0 ? spacing_ : 1;
  style.columns = &columns_;
  if (const auto* record = AcDbTextStyleTableRecord::cast(tarn::host::peek(style_))) {
    style.font = record->values().font;
    style.widthFactor = record->values().xScale;
    style.oblique = record->values().obliquingAngle;
  }
  const AcGeVector3d along = direction_.normal();
  const AcGeVector3d up = normal_.crossProduct(along).normal();
  const auto place = [&](double x, double y) { return location_ + along * x + up * y; };
  AcGiSubEntityTraits& traits = draw->subEntityTraits();
  const Adesk::UInt32 own = traits.trueColor();
  const tarn::host::Paragraphs paragraphs = tarn::host::layOut(contents_, style);
  for (const tarn::host::PlacedText& text : paragraphs.texts) {
    tarn::host::setResolvedColor(traits, text.color.value_or(own));
    AcGiTextStyle manner(text.font);
    manner.setUnderlined(text.underlined);
    manner.setOverlined(text.overlined);
    draw->geometry().styledText(place(text.x, text.y), normal_, along, text.height,
                                text.widthFactor, text.oblique, text.text.c_str(), manner);
  }
  for (const tarn::host::PlacedRule& rule : paragraphs.rules) {
    tarn::host::setResolvedColor(traits, rule.color.value_or(own));
    const AcGePoint3d ends[2] = {place(rule.x1, rule.y1), place(rule.x2, rule.y2)};
    draw->geometry().polyline(2, ends);
  }
  return Adesk::kTrue;
}

Acad::ErrorStatus AcDbMText::subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker,
                                               const AcGePoint3d&, const AcGePoint3d&,
                                               const AcGeMatrix3d&, AcGePoint3dArray& snapPoints,
                                               AcDbIntArray&) const {
  if (osnapMode == AcDb::kOsModeIns) snapPoints.append(location());
  return Acad::eOk;
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
  width_ *= scale;
  for (double* length : {&columns_.width, &columns_.gap, &columns_.height}) *length *= scale;
  for (double& height : columns_.heights) height *= scale;
  location_.transformBy(transform);
  recordGraphicsModified();
  return Acad::eOk;
}
