#include "dbfiler.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/database/resbufitems.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, 0)

namespace {

constexpr short kApplication = 1001;
constexpr short kLong = 1071;

}  // namespace

AcDbLayerTableRecord::AcDbLayerTableRecord() {
  color_.setColorIndex(7);
}

Adesk::UInt16 AcDbLayerTableRecord::colorIndex() const {
  assertReadEnabled();
  return color_.colorIndex();
}

Acad::ErrorStatus AcDbLayerTableRecord::setColorIndex(Adesk::UInt16 color) {
  assertWriteEnabled();
  if (color < 1 || color > 255) return Acad::eInvalidInput;
  return color_.setColorIndex(color);
}

AcCmColor AcDbLayerTableRecord::color() const {
  assertReadEnabled();
  return color_;
}

Acad::ErrorStatus AcDbLayerTableRecord::setColor(const AcCmColor& color) {
  const Acad::ErrorStatus status = setColorIndex(color.colorIndex());
  if (status == Acad::eOk) color_ = color;
  return status;
}

AcDbObjectId AcDbLayerTableRecord::linetypeObjectId() const {
  assertReadEnabled();
  return linetype_;
}

void AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId linetype) {
  assertWriteEnabled();
  linetype_ = linetype;
}

AcDb::LineWeight AcDbLayerTableRecord::lineWeight() const {
  assertReadEnabled();
  return weight_;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) {
  assertWriteEnabled();
  const bool isOwn = weight == AcDb::kLnWtByLwDefault || weight >= AcDb::kLnWt000;
  if (!isOwn || weight > AcDb::kLnWt211) return Acad::eInvalidInput;
  weight_ = weight;
  return Acad::eOk;
}

/// Files have it in extended data.
AcCmTransparency AcDbLayerTableRecord::transparency() const {
  assertReadEnabled();
  AcCmTransparency found;
  bool isMine = false;
  for (const tarn::host::ResbufItem& item : tarn::host::ObjectAccess::extendedData(*this)) {
    if (item.code == kApplication) {
      const auto* name = std::get_if<std::wstring>(&item.value);
      isMine = name != nullptr && *name == L"AcCmTransparency";
    }
    const auto* bits = std::get_if<Adesk::Int32>(&item.value);
    if (isMine && item.code == kLong && bits != nullptr) {
      found.serializeIn(static_cast<Adesk::UInt32>(*bits));
    }
  }
  return found;
}

bool AcDbLayerTableRecord::isOff() const {
  assertReadEnabled();
  return off_;
}

void AcDbLayerTableRecord::setIsOff(bool off) {
  assertWriteEnabled();
  off_ = off;
}

bool AcDbLayerTableRecord::isFrozen() const {
  assertReadEnabled();
  return frozen_;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  assertWriteEnabled();
  frozen_ = frozen;
  return Acad::eOk;
}

bool AcDbLayerTableRecord::isLocked() const {
  assertReadEnabled();
  return locked_;
}

void AcDbLayerTableRecord::setIsLocked(bool locked) {
  assertWriteEnabled();
  locked_ = locked;
}

bool AcDbLayerTableRecord::isPlottable() const {
  assertReadEnabled();
  return plottable_;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
  assertWriteEnabled();
  plottable_ = plottable;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeUInt16(color_.colorIndex());
  filer->writeBool(color_.isByColor());
  filer->writeUInt8(color_.red());
  filer->writeUInt8(color_.green());
  filer->writeUInt8(color_.blue());
  filer->writeHardPointerId(linetype_);
  filer->writeBool(off_);
  filer->writeBool(frozen_);
  filer->writeBool(locked_);
  filer->writeBool(plottable_);
  filer->writeInt16(weight_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  Adesk::UInt16 index = 7;
  bool isTrue = false;
  Adesk::UInt8 red = 0;
  Adesk::UInt8 green = 0;
  Adesk::UInt8 blue = 0;
  filer->readUInt16(&index);
  filer->readBool(&isTrue);
  filer->readUInt8(&red);
  filer->readUInt8(&green);
  filer->readUInt8(&blue);
  filer->readHardPointerId(&linetype_);
  color_.setColorIndex(index);
  if (isTrue) color_.setRGB(red, green, blue);
  filer->readBool(&off_);
  filer->readBool(&frozen_);
  filer->readBool(&locked_);
  filer->readBool(&plottable_);
  Adesk::Int16 weight = weight_;
  filer->readInt16(&weight);
  weight_ = static_cast<AcDb::LineWeight>(weight);
  return filer->filerStatus();
}
