#include "host/database/objectstate.h"

#include "dbmain.h"
#include "host/database/memoryfiler.h"
#include "host/database/objectaccess.h"

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
