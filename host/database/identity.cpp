#include <algorithm>
#include <cwchar>
#include <deque>

#include "base/text.h"
#include "dbdict.h"
#include "dbid.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"

AcDbHandle::AcDbHandle(const ACHAR* digits) {
  Adesk::UInt64 value = 0;
  size_t count = 0;
  for (; digits != nullptr && digits[count] != 0; ++count) {
    const ACHAR c = digits[count];
    int digit = -1;
    if (c >= '0' && c <= '9') digit = static_cast<int>(c - '0');
    if (c >= 'a' && c <= 'f') digit = static_cast<int>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') digit = static_cast<int>(c - 'A') + 10;
    if (digit < 0 || count == 16) return;
    value = value * 16 + static_cast<Adesk::UInt64>(digit);
  }
  value_ = value;
}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* buffer, size_t capacity) const {
  return std::swprintf(buffer, capacity, L"%llX", static_cast<unsigned long long>(value_)) > 0;
}

bool AcDbObjectId::isValid() const {
  return stub_ != nullptr && stub_->database != nullptr && stub_->object != nullptr;
}

bool AcDbObjectId::isErased() const {
  return !isValid() || stub_->object->isErased();
}

AcDbDatabase* AcDbObjectId::database() const {
  return stub_ != nullptr ? stub_->database : nullptr;
}

AcDbHandle AcDbObjectId::handle() const {
  return stub_ != nullptr ? stub_->handle : AcDbHandle();
}

const AcRxClass* AcDbObjectId::objectClass() const {
  return isValid() ? stub_->object->isA() : nullptr;
}

namespace tarn::host {

AcDbObjectId ObjectAccess::adopt(AcDbDatabase& database, AcDbObject* object, Adesk::UInt64 handle) {
  // Not destroyed at the end of the process either: ids in other libraries' globals are.
  static auto& everySlot = *new std::deque<AcDbStub>;
  DatabaseState& own = state(database);
  AcDbStub& slot = everySlot.emplace_back();
  if (handle == 0 || own.stubs.count(handle) > 0) handle = own.nextHandle;
  while (own.stubs.count(handle) > 0) ++handle;
  own.nextHandle = std::max(own.nextHandle, handle + 1);
  slot.database = &database;
  slot.handle = AcDbHandle(handle);
  slot.object.reset(object);
  slot.changed = true;
  // Files have their objects mostly in the order of handles.
  own.stubs.emplace_hint(own.stubs.end(), handle, &slot);
  object->id_ = AcDbObjectId(&slot);
  object->writing_ = true;
  object->appended_ = true;
  return object->id_;
}

void ObjectAccess::finishReading(AcDbObject& object) {
  object.writing_ = false;
  object.appended_ = false;
  object.eraseChanged_ = false;
  object.modified_ = false;
  object.graphicsModified_ = false;
  static_cast<AcDbStub*>(object.id_)->changed = false;
}

bool ObjectAccess::isChanged(AcDbObjectId id) {
  return static_cast<AcDbStub*>(id)->changed;
}

void ObjectAccess::setChanged(AcDbObject& object) {
  static_cast<AcDbStub*>(object.id_)->changed = true;
}

void ObjectAccess::exchange(AcDbObjectId id, AcDbObject* object) {
  AcDbStub* slot = id;
  object->id_ = id;
  object->erased_ = slot->object->erased_;
  slot->object.reset(object);
}

void ObjectAccess::addRecordRead(AcDbSymbolTable& table, AcDbObjectId record) {
  table.records_.append(record);
  setOwner(*peek(record), table.objectId());
}

void ObjectAccess::addEntityRead(AcDbBlockTableRecord& block, AcDbObjectId entity) {
  block.entities_.append(entity);
  setOwner(*peek(entity), block.objectId());
}

void ObjectAccess::setOriginRead(AcDbBlockTableRecord& block, const AcGePoint3d& origin) {
  block.origin_ = origin;
}

void ObjectAccess::addEntryRead(AcDbDictionary& dictionary, const std::wstring& name,
                                AcDbObjectId id) {
  dictionary.entries_[toLower(name)] = {name, id};
  setOwner(*peek(id), dictionary.objectId());
}

AcDbObject* peek(AcDbObjectId id) {
  return id.isValid() ? static_cast<AcDbStub*>(id)->object.get() : nullptr;
}

}  // namespace tarn::host
