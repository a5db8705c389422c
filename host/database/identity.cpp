#include <cwchar>
#include <deque>

#include "dbid.h"
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

AcDbObjectId ObjectAccess::adopt(AcDbDatabase& database, AcDbObject* object) {
  // Not destroyed at the end of the process either: ids in other libraries' globals are.
  static auto& everySlot = *new std::deque<AcDbStub>;
  DatabaseState& own = state(database);
  AcDbStub& slot = everySlot.emplace_back();
  slot.database = &database;
  slot.handle = AcDbHandle(own.nextHandle);
  slot.object.reset(object);
  own.stubs.emplace(own.nextHandle++, &slot);
  object->id_ = AcDbObjectId(&slot);
  object->writing_ = true;
  object->appended_ = true;
  return object->id_;
}

AcDbObject* peek(AcDbObjectId id) {
  return id.isValid() ? static_cast<AcDbStub*>(id)->object.get() : nullptr;
}

}  // namespace tarn::host
