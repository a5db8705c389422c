#include "host/filing/objectstate.h"

#include "dbmain.h"
#include "host/database/objectaccess.h"
#include "host/filing/memoryfiler.h"

namespace tarn::host {

Bytes objectBytes(AcDbObject& object) {
  const ObjectAccess::Look look(object);
  MemoryFiler filer;
  return object.dwgOut(&filer) == Acad::eOk ? filer.bytes() : Bytes();
}

bool readObjectBytes(AcDbObject& object, const Bytes& bytes) {
  MemoryFiler filer(bytes);
  return object.dwgIn(&filer) == Acad::eOk;
}

}  // namespace tarn::host
