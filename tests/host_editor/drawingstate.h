// What a drawing holds, as a value to compare: every object that is not erased, by its filed bytes.
#pragma once

#include <map>
#include <vector>

#include "dbmain.h"
#include "host/database/objectaccess.h"
#include "host/database/objectstate.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

struct DrawingState {
  std::map<Adesk::UInt64, Bytes> objects;
  HeaderVariables header;
  bool operator==(const DrawingState& other) const {
    return header == other.header && objects == other.objects;
  }
};

inline DrawingState stateOf(AcDbDatabase& database) {
  DrawingState state;
  state.header = ObjectAccess::state(database).header;
  for (Adesk::UInt64 handle = 1; handle < database.handseed().value(); ++handle) {
    AcDbObjectId id;
    if (database.getAcDbObjectId(id, false, AcDbHandle(handle)) != Acad::eOk) continue;
    AcDbObject* object = nullptr;
    if (acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) continue;
    state.objects[handle] = objectBytes(*object);
    object->close();
  }
  return state;
}

inline DrawingState stateOf(HostApp& app) {
  return stateOf(*app.documents().current().database());
}

}  // namespace tarn::host
