// Filing of texts and lists of owned objects.
#pragma once

#include <string>

#include "acutmem.h"
#include "dbfiler.h"
#include "dbid.h"

namespace tarn::host {

inline Acad::ErrorStatus readText(AcDbDwgFiler& filer, std::wstring& text) {
  ACHAR* read = nullptr;
  const Acad::ErrorStatus status = filer.readString(&read);
  if (status != Acad::eOk) return status;
  text = read != nullptr ? read : L"";
  acutDelString(read);
  return Acad::eOk;
}

inline Acad::ErrorStatus writeIds(AcDbDwgFiler& filer, const AcDbObjectIdArray& ids) {
  filer.writeInt32(ids.length());
  for (const AcDbObjectId& id : ids) filer.writeSoftOwnershipId(id);
  return filer.filerStatus();
}

/// `ids` changes only when all of them could be read.
inline Acad::ErrorStatus readIds(AcDbDwgFiler& filer, AcDbObjectIdArray& ids) {
  Adesk::Int32 count = 0;
  filer.readInt32(&count);
  AcDbObjectIdArray read;
  for (Adesk::Int32 i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i) {
    AcDbObjectId id;
    // A filer that copies into another drawing knows nothing for some of them.
    if (filer.readSoftOwnershipId(&id) == Acad::eOk && !id.isNull()) read.append(id);
  }
  if (filer.filerStatus() == Acad::eOk) ids = read;
  return filer.filerStatus();
}

}  // namespace tarn::host
