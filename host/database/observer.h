// How the program around a database learns what happens in it.
#pragma once

#include "adesk.h"

class AcDbDatabase;
class AcDbEntity;
class AcDbObject;

namespace tarn::host {

/// Every call comes on the main thread. During objectAppended, objectOpenedForWrite and drawWanted
/// the object is open; during the others it is closed. Nothing may be destroyed by a call.
class DatabaseObserver {
 public:
  virtual ~DatabaseObserver() = default;
  virtual void objectAppended(AcDbObject& object) = 0;
  /// Opened for write and not changed yet: the moment to take a snapshot.
  virtual void objectOpenedForWrite(AcDbObject&) {}
  /// A variable of the drawing is about to be another one.
  virtual void headerWillChange() {}
  /// Undo or redo has brought back what variables were; `looks` when entities look by them.
  virtual void headerRestored(bool /*looks*/) {}
  /// A change was made and the object was closed.
  virtual void objectModified(AcDbObject& object) = 0;
  /// The erase mark was set or taken off and the object was closed.
  virtual void objectErased(AcDbObject& object, bool erased) = 0;
  /// AcDbEntity::draw() was called: draw this one now.
  virtual void drawWanted(AcDbEntity& entity) = 0;
};

/// Installs the one observer of a database, in place of an earlier one; null takes it off. The
/// observer is not owned and must be taken off before it is destroyed.
ACADHOST_EXPORT void setDatabaseObserver(AcDbDatabase& database, DatabaseObserver* observer);

/// The observer of an object's database, or null.
DatabaseObserver* observerOf(const AcDbObject& object);

}  // namespace tarn::host
