// What entities that are nothing but their values do alike. The file of each class lists its values
// by an eachField() and instantiates AcDbValuedEntity for them.
#pragma once

#include "dbvalued.h"
#include "host/database/drawnextents.h"
#include "host/database/fieldfiling.h"

template <class Held>
Acad::ErrorStatus AcDbValuedEntity<Held>::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldWriter write(*filer);
  write(values_);
  return filer->filerStatus();
}

template <class Held>
Acad::ErrorStatus AcDbValuedEntity<Held>::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::FieldReader read(*filer);
  read(values_);
  return filer->filerStatus();
}

template <class Held>
Acad::ErrorStatus AcDbValuedEntity<Held>::subGetGeomExtents(AcDbExtents& extents) const {
  return tarn::host::drawnExtents(*this, extents);
}
