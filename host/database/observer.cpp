#include "host/database/observer.h"

#include "host/database/objectaccess.h"

namespace tarn::host {

void setDatabaseObserver(AcDbDatabase& database, DatabaseObserver* observer) {
  ObjectAccess::state(database).observer = observer;
}

DatabaseObserver* observerOf(const AcDbObject& object) {
  AcDbDatabase* database = object.database();
  return database != nullptr ? ObjectAccess::state(*database).observer : nullptr;
}

}  // namespace tarn::host
