#include "host/filing/snapshot.h"

#include <vector>

#include "dbmain.h"
#include "host/filing/memoryfiler.h"

namespace tarn::host {

std::vector<char> takeSnapshot(const AcDbObject& object) {
  MemoryFiler filer;
  filer.writeBool(object.isErased());
  return object.dwgOut(&filer) == Acad::eOk ? filer.bytes() : std::vector<char>();
}

Acad::ErrorStatus restoreSnapshot(AcDbObject& object, const std::vector<char>& snapshot) {
  MemoryFiler filer(snapshot);
  bool erased = false;
  if (filer.readBool(&erased) != Acad::eOk) return filer.filerStatus();
  const Acad::ErrorStatus status = object.dwgIn(&filer);
  if (status != Acad::eOk || erased == object.isErased()) return status;
  return object.erase(erased);
}

}  // namespace tarn::host
