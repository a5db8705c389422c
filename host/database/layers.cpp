#include "dbfiler.h"
#include "dbsymtb.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, 0)

Adesk::UInt16 AcDbLayerTableRecord::colorIndex() const {
  assertReadEnabled();
  return color_;
}

Acad::ErrorStatus AcDbLayerTableRecord::setColorIndex(Adesk::UInt16 color) {
  assertWriteEnabled();
  if (color < 1 || color > 255) return Acad::eInvalidInput;
  color_ = color;
  return Acad::eOk;
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

Acad::ErrorStatus AcDbLayerTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeUInt16(color_);
  filer->writeBool(off_);
  filer->writeBool(frozen_);
  filer->writeBool(locked_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readUInt16(&color_);
  filer->readBool(&off_);
  filer->readBool(&frozen_);
  filer->readBool(&locked_);
  return filer->filerStatus();
}
