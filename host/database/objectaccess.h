// The state behind ids, objects and databases, and the one place that changes how objects are open.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "dbid.h"
#include "dbmain.h"
#include "gepnt3d.h"
#include "host/database/headervariables.h"

class AcDbBlockTableRecord;
class AcDbDictionary;
class AcDbSymbolTable;
class AcDbSymbolTableRecord;

namespace tarn::host {
class DatabaseObserver;
struct ResbufItem;
using ResbufItems = std::vector<ResbufItem>;
}  // namespace tarn::host

/// What an id points to. Never destroyed, so that an id kept too long stays harmless; without a
/// database once the drawing was closed.
class AcDbStub {
 public:
  AcDbDatabase* database = nullptr;
  AcDbHandle handle;
  std::unique_ptr<AcDbObject> object;
  bool changed = false;  ///< since it was read from a drawing file; always, when it was not
};

namespace tarn::host {

struct DatabaseState {
  std::map<Adesk::UInt64, AcDbStub*> stubs;  // by handle, in the order of creation
  Adesk::UInt64 nextHandle = 1;
  AcDbObjectId blockTable;
  AcDbObjectId layerTable;
  AcDbObjectId linetypeTable;
  AcDbObjectId textStyleTable;
  AcDbObjectId regAppTable;
  AcDbObjectId viewTable;
  AcDbObjectId dimStyleTable;
  AcDbObjectId ucsTable;
  AcDbObjectId viewportTable;
  AcDbObjectId namedObjects;
  AcDbObjectId layerZero;
  HeaderVariables header;
  std::wstring filename;
  DatabaseObserver* observer = nullptr;
  /// What objects that are open for write and changed were like before.
  std::unordered_map<AcDbStub*, std::vector<char>> before;
  std::vector<AcDbDatabaseReactor*> reactors;
};

/// Each opening of an object, for whatever purpose, goes through open(), and each beginning of a
/// change through beginWrite().
class ObjectAccess {
 public:
  static DatabaseState& state(AcDbDatabase& database) { return *database.state_; }
  /// The database owns the object from then on; it is left open for write. With a handle of 0, or
  /// one that is taken, it gets the next free one.
  static AcDbObjectId adopt(AcDbDatabase& database, AcDbObject* object, Adesk::UInt64 handle = 0);
  /// Closes an object that was read from a file, without a word to anybody: it counts as unchanged.
  static void finishReading(AcDbObject& object);
  /// The next free handle, for something that is no object of the database.
  static Adesk::UInt64 takeHandle(AcDbDatabase& database) { return state(database).nextHandle++; }
  static bool isChanged(AcDbObjectId id);
  static void setChanged(AcDbObject& object);
  // While a file is read: what is put in is neither announced nor looked for.
  static void addRecordRead(AcDbSymbolTable& table, AcDbObjectId record);
  static void addEntityRead(AcDbBlockTableRecord& block, AcDbObjectId entity);
  static void setOriginRead(AcDbBlockTableRecord& block, const AcGePoint3d& origin);
  static void addEntryRead(AcDbDictionary& dictionary, const std::wstring& name, AcDbObjectId id);
  static Acad::ErrorStatus open(AcDbObject& object, AcDb::OpenMode mode, bool openErased);
  static void beginWrite(AcDbObject& object);
  static void setOwner(AcDbObject& object, AcDbObjectId owner) { object.ownerId_ = owner; }

  /// Of all applications, each behind its name.
  static const ResbufItems& extendedData(const AcDbObject& object);
  static void setExtendedData(AcDbObject& object, ResbufItems items);
  /// What a line type or a style of texts says in the file beyond its name.
  static const ResbufItems& definition(const AcDbSymbolTableRecord& record);
  static void setDefinition(AcDbSymbolTableRecord& record, ResbufItems items);
  /// The object that this one began as a copy of; null for none. What a drawing file says about
  /// that one beyond what objects know holds for the copy too.
  static AcDbObjectId copiedFrom(const AcDbObject& object) { return object.copiedFrom_; }
  static void setCopiedFrom(AcDbObject& object, AcDbObjectId source) {
    object.copiedFrom_ = source;
  }

  static AcDbObjectId extension(const AcDbObject& object) { return object.extension_; }
  static void setExtension(AcDbObject& object, AcDbObjectId dictionary) {
    object.extension_ = dictionary;
  }
  /// Called with each new object that began as a copy, once its drawing owns it.
  static void setCopyCompleter(void (*complete)(AcDbObject&));
  static void completeCopy(AcDbObject& object);
  /// Takes out of a dictionary what it names; nothing is erased or told.
  static void clearEntries(AcDbDictionary& dictionary);

  /// Puts another object in the place of a closed one, which is destroyed: under its id, and
  /// erased like it.
  static void exchange(AcDbObjectId id, AcDbObject* object);

  static bool isOpen(const AcDbObject& object) {
    return object.readers_ > 0 || object.writing_ || object.notifying_;
  }
  /// Opens a closed object to bring an earlier state of it back; nobody is asked or told. close()
  /// ends it and tells.
  static void beginRestore(AcDbObject& object, Restoring what = Restoring::kNot) {
    object.writing_ = true;
    object.restoring_ = what;
  }
  template <typename Call>
  static void tellReactors(const AcDbObject& object, Call call) {
    for (AcDbObjectReactor* reactor : reactorsOf(object)) call(*reactor);
  }
  static std::vector<AcDbObjectReactor*> reactorsOf(const AcDbObject& object);
  /// Calls each reactor of a database that is still there.
  template <typename Call>
  static void tell(const AcDbDatabase& database, Call call) {
    const auto all = database.state_->reactors;
    for (AcDbDatabaseReactor* reactor : all) {
      const auto& now = database.state_->reactors;
      if (std::find(now.begin(), now.end(), reactor) != now.end()) call(*reactor);
    }
  }
  /// Keeps what the object is like until it is closed; nothing when that is kept already.
  static void keepState(AcDbObject& object);
  static void forgetState(const AcDbObject& object);
  /// Sets the mark of an object that is being restored, without asking the object.
  static void setErased(AcDbObject& object, bool erased) {
    if (object.erased_ != erased) object.eraseChanged_ = !object.eraseChanged_;
    object.erased_ = erased;
  }
  /// Makes any object readable while it lives.
  class Look {
   public:
    explicit Look(AcDbObject& object) : object_(object) { ++object_.readers_; }
    ~Look() { --object_.readers_; }
    Look(const Look&) = delete;
    Look& operator=(const Look&) = delete;

   private:
    AcDbObject& object_;
  };
};

/// The object of a valid id, open or not, for the host's own look at its tables; else null.
AcDbObject* peek(AcDbObjectId id);

/// Marks an object with its owner, or takes the mark off; nothing for null, and for one that stands
/// so already.
void eraseOwned(AcDbObjectId id, bool erasing);

/// Makes the name known to the drawing when it is not. False when its table cannot be changed.
bool registerApplication(AcDbDatabase& database, const ACHAR* application);

}  // namespace tarn::host
