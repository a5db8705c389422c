#include "dbfiler.h"
#include "dbsymtb.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbViewTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewTable, AcDbSymbolTable, 0)

Acad::ErrorStatus AcDbViewTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint2d(center_);
  filer->writePoint3d(target_);
  filer->writeVector3d(direction_);
  for (const double number : {height_, width_, twist_, lens_, front_, back_}) {
    filer->writeDouble(number);
  }
  for (const bool flag : {perspective_, frontOn_, backOn_, frontAtEye_}) filer->writeBool(flag);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbViewTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint2d(&center_);
  filer->readPoint3d(&target_);
  filer->readVector3d(&direction_);
  for (double* number : {&height_, &width_, &twist_, &lens_, &front_, &back_}) {
    filer->readDouble(number);
  }
  for (bool* flag : {&perspective_, &frontOn_, &backOn_, &frontAtEye_}) filer->readBool(flag);
  return filer->filerStatus();
}
