// Line type, line weight, colour and transparency of entities.
#include "host/database/entityproperties.h"

#include <cmath>

#include "acutmem.h"
#include "base/text.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"

namespace {

constexpr const wchar_t* kByLayerName = L"ByLayer";
constexpr Adesk::Int32 kHighestColor = 0xFFFFFF;

bool isByLayerName(const ACHAR* name) {
  return tarn::equalsIgnoreCase(std::wstring_view(name), kByLayerName);
}

const ACHAR* nameOf(AcDbObjectId linetype) {
  const auto* record = AcDbLinetypeTableRecord::cast(tarn::host::peek(linetype));
  const ACHAR* name = kByLayerName;
  if (record != nullptr) record->getName(name);
  return name;
}

}  // namespace

void AcDbEntity::setProperties(const Properties& properties) {
  assertWriteEnabled();
  const Properties standard;
  properties_ = properties;
  if (!(properties.linetypeScale > 0) || !std::isfinite(properties.linetypeScale)) {
    properties_.linetypeScale = standard.linetypeScale;
  }
  if (!std::isfinite(properties.thickness)) properties_.thickness = 0;
  if (properties.trueColor < 0 || properties.trueColor > kHighestColor) properties_.trueColor = -1;
  if (properties.lineWeight < AcDb::kLnWtByLwDefault || properties.lineWeight > AcDb::kLnWt211) {
    properties_.lineWeight = standard.lineWeight;
  }
  recordGraphicsModified();
}

AcDbObjectId AcDbEntity::linetypeId() const {
  assertReadEnabled();
  return properties_.linetype;
}

ACHAR* AcDbEntity::linetype() const {
  assertReadEnabled();
  ACHAR* copy = nullptr;
  acutNewString(nameOf(properties_.linetype), copy);
  return copy;
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, Adesk::Boolean doSubents) {
  if (name == nullptr) return Acad::eInvalidInput;
  AcDbObjectId id;
  AcDbDatabase* drawing =
      database() != nullptr ? database() : acdbHostApplicationServices()->workingDatabase();
  if (!isByLayerName(name)) {
    if (drawing == nullptr) return Acad::eNoDatabase;
    const auto* table = AcDbLinetypeTable::cast(tarn::host::peek(drawing->linetypeTableId()));
    if (table == nullptr || table->getIdAt(name, id) != Acad::eOk) return Acad::eKeyNotFound;
  }
  return setLinetype(id, doSubents);
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId id, Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  const AcDbObject* record = tarn::host::peek(id);
  const bool isLinetype = record != nullptr && record->isKindOf(AcDbLinetypeTableRecord::desc());
  if (!id.isNull() && !isLinetype) return Acad::eInvalidInput;
  properties_.linetype = isByLayerName(nameOf(id)) ? AcDbObjectId() : id;
  recordGraphicsModified();
  return Acad::eOk;
}

double AcDbEntity::linetypeScale() const {
  assertReadEnabled();
  return properties_.linetypeScale;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  if (!(scale > 0) || !std::isfinite(scale)) return Acad::eInvalidInput;
  properties_.linetypeScale = scale;
  recordGraphicsModified();
  return Acad::eOk;
}

AcDb::LineWeight AcDbEntity::lineWeight() const {
  assertReadEnabled();
  return static_cast<AcDb::LineWeight>(properties_.lineWeight);
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight weight, Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  if (weight < AcDb::kLnWtByLwDefault || weight > AcDb::kLnWt211) return Acad::eInvalidInput;
  properties_.lineWeight = weight;
  recordGraphicsModified();
  return Acad::eOk;
}

AcCmColor AcDbEntity::color() const {
  assertReadEnabled();
  AcCmColor color;
  color.setColorIndex(color_);
  const Adesk::Int32 rgb = properties_.trueColor;
  if (rgb >= 0) {
    color.setRGB(static_cast<Adesk::UInt8>(rgb >> 16), static_cast<Adesk::UInt8>(rgb >> 8 & 255),
                 static_cast<Adesk::UInt8>(rgb & 255));
  }
  return color;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, Adesk::Boolean doSubents,
                                       AcDbDatabase* /*database*/) {
  const Acad::ErrorStatus status = setColorIndex(color.colorIndex(), doSubents);
  if (status == Acad::eOk && color.isByColor()) {
    properties_.trueColor = color.red() << 16 | color.green() << 8 | color.blue();
  }
  return status;
}

AcCmTransparency AcDbEntity::transparency() const {
  assertReadEnabled();
  return properties_.transparency;
}

Acad::ErrorStatus AcDbEntity::setTransparency(const AcCmTransparency& transparency,
                                              Adesk::Boolean /*doSubents*/) {
  assertWriteEnabled();
  properties_.transparency = transparency;
  recordGraphicsModified();
  return Acad::eOk;
}

double AcDbEntity::thickness() const {
  assertReadEnabled();
  return properties_.thickness;
}

Acad::ErrorStatus AcDbEntity::setThickness(double thickness) {
  assertWriteEnabled();
  if (!std::isfinite(thickness)) return Acad::eInvalidInput;
  properties_.thickness = thickness;
  recordGraphicsModified();
  return Acad::eOk;
}
