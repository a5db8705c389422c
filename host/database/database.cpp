#include <algorithm>

#include <cmath>

#include "base/text.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "host/database/layouts.h"
#include "host/database/objectaccess.h"
#include "host/database/observer.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabase, AcRxObject)

using tarn::host::ObjectAccess;

namespace {

/// A new object of the host's own, owned by the database and closed.
template <class T>
AcDbObjectId addOwn(AcDbDatabase& database, T* object) {
  const AcDbObjectId id = ObjectAccess::adopt(database, object);
  object->close();
  return id;
}

template <class Table, class Record>
AcDbObjectId addRecord(AcDbObjectId tableId, Record* record, const ACHAR* name) {
  record->setName(name);
  Table* table = nullptr;
  AcDbObjectId id;
  if (acdbOpenObject(table, tableId, AcDb::kForWrite) == Acad::eOk) {
    table->add(id, record);
    record->close();
    table->close();
  }
  return id;
}

}  // namespace

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool /*noDocument*/)
    : state_(std::make_unique<tarn::host::DatabaseState>()) {
  if (!buildDefaultDrawing) return;
  state_->blockTable = addOwn(*this, new AcDbBlockTable);
  state_->layerTable = addOwn(*this, new AcDbLayerTable);
  state_->linetypeTable = addOwn(*this, new AcDbLinetypeTable);
  state_->textStyleTable = addOwn(*this, new AcDbTextStyleTable);
  state_->regAppTable = addOwn(*this, new AcDbRegAppTable);
  state_->viewTable = addOwn(*this, new AcDbViewTable);
  state_->dimStyleTable = addOwn(*this, new AcDbDimStyleTable);
  state_->ucsTable = addOwn(*this, new AcDbUCSTable);
  state_->viewportTable = addOwn(*this, new AcDbViewportTable);
  state_->namedObjects = addOwn(*this, new AcDbDictionary);
  state_->layerZero = addRecord<AcDbLayerTable>(state_->layerTable, new AcDbLayerTableRecord, L"0");
  state_->header.currentLayer = state_->layerZero;
  for (const ACHAR* space : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
    addRecord<AcDbBlockTable>(state_->blockTable, new AcDbBlockTableRecord, space);
  }
  tarn::host::completeLayouts(*this);
}

AcDbDatabase::~AcDbDatabase() {
  state_->observer = nullptr;
  ObjectAccess::tell(*this, [&](AcDbDatabaseReactor& r) { r.goodbye(this); });
  state_->reactors.clear();
  AcDbHostApplicationServices* services = acdbHostApplicationServices();
  if (services->workingDatabase() == this) services->setWorkingDatabase(nullptr);
  // Newest first, so that an object outlives what it owns.
  for (auto entry = state_->stubs.rbegin(); entry != state_->stubs.rend(); ++entry) {
    entry->second->object.reset();
    entry->second->database = nullptr;
  }
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* object) {
  if (object == nullptr) return Acad::eNullObjectPointer;
  if (!object->objectId().isNull()) return Acad::eAlreadyInDb;
  id = ObjectAccess::adopt(*this, object);
  if (state_->observer != nullptr) state_->observer->objectAppended(*object);
  ObjectAccess::tell(*this, [&](AcDbDatabaseReactor& r) { r.objectAppended(this, object); });
  ObjectAccess::completeCopy(*object);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::addReactor(AcDbDatabaseReactor* reactor) const {
  std::vector<AcDbDatabaseReactor*>& list = state_->reactors;
  if (reactor == nullptr) return Acad::eInvalidInput;
  if (std::find(list.begin(), list.end(), reactor) != list.end()) return Acad::eDuplicateKey;
  list.push_back(reactor);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::removeReactor(AcDbDatabaseReactor* reactor) const {
  std::vector<AcDbDatabaseReactor*>& list = state_->reactors;
  const auto found = std::find(list.begin(), list.end(), reactor);
  if (found == list.end()) return Acad::eKeyNotFound;
  list.erase(found);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObject* object) {
  AcDbObjectId id;
  return addAcDbObject(id, object);
}

AcDbObjectId AcDbDatabase::blockTableId() const {
  return state_->blockTable;
}
AcDbObjectId AcDbDatabase::layerTableId() const {
  return state_->layerTable;
}
AcDbObjectId AcDbDatabase::linetypeTableId() const {
  return state_->linetypeTable;
}
AcDbObjectId AcDbDatabase::textStyleTableId() const {
  return state_->textStyleTable;
}
AcDbObjectId AcDbDatabase::regAppTableId() const {
  return state_->regAppTable;
}
AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const {
  return state_->namedObjects;
}

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, state_->blockTable, mode);
}

Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, state_->layerTable, mode);
}

Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                          AcDb::OpenMode mode) {
  return acdbOpenObject(dictionary, state_->namedObjects, mode);
}

AcDbObjectId AcDbDatabase::viewTableId() const {
  return state_->viewTable;
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbViewTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, state_->viewTable, mode);
}

AcDbObjectId AcDbDatabase::dimStyleTableId() const {
  return state_->dimStyleTable;
}
AcDbObjectId AcDbDatabase::UCSTableId() const {
  return state_->ucsTable;
}
AcDbObjectId AcDbDatabase::viewportTableId() const {
  return state_->viewportTable;
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbDimStyleTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, state_->dimStyleTable, mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbUCSTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, state_->ucsTable, mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbViewportTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, state_->viewportTable, mode);
}

AcDbObjectId AcDbDatabase::layerZero() const {
  return state_->layerZero;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool /*createIfNotFound*/,
                                                const AcDbHandle& handle) {
  const auto found = state_->stubs.find(handle.value());
  if (found == state_->stubs.end()) return Acad::eUnknownHandle;
  id = AcDbObjectId(found->second);
  return Acad::eOk;
}

AcDbHandle AcDbDatabase::handseed() const {
  return AcDbHandle(state_->nextHandle);
}

Adesk::Int32 AcDbDatabase::approxNumObjects() const {
  return static_cast<Adesk::Int32>(
      std::count_if(state_->stubs.begin(), state_->stubs.end(),
                    [](const auto& entry) { return !entry.second->object->isErased(); }));
}

Acad::ErrorStatus AcDbDatabase::getFilename(const ACHAR*& path) const {
  path = state_->filename.c_str();
  return Acad::eOk;
}

void AcDbDatabase::setFilename(const ACHAR* path) {
  state_->filename = path != nullptr ? path : L"";
}
