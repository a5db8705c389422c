// Patterns of lines and styles of texts.
#include "dbsymtb.h"
#include "host/database/fieldfiling.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, 0)

namespace {

template <typename Values, typename Filing>
void eachValue(Values& values, Filing&& filing) {
  filing.all(values.font, values.textSize, values.xScale, values.obliquingAngle);
}

}  // namespace

void AcDbLinetypeTableRecord::setDashes(std::vector<double> dashes) {
  assertWriteEnabled();
  dashes_ = std::move(dashes);
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldWriter write(*filer);
  write(dashes_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldReader read(*filer);
  read(dashes_);
  return filer->filerStatus();
}

void AcDbTextStyleTableRecord::setValues(Values values) {
  assertWriteEnabled();
  values_ = std::move(values);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  eachValue(values_, tarn::host::FieldWriter(*filer));
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  eachValue(values_, tarn::host::FieldReader(*filer));
  return filer->filerStatus();
}
