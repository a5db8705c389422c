#include "acutmem.h"
#include "base/text.h"
#include "dbfiler.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/database/recordfiling.h"
#include "host/database/resbufitems.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbDimStyleTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbUCSTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbUCSTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewportTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewportTable, AcDbSymbolTable, 0)

struct AcDbSymbolTableRecord::Definition {
  tarn::host::ResbufItems items;
};

AcDbSymbolTableRecord::AcDbSymbolTableRecord() = default;
AcDbSymbolTableRecord::~AcDbSymbolTableRecord() = default;

namespace tarn::host {

const ResbufItems& ObjectAccess::definition(const AcDbSymbolTableRecord& record) {
  static const ResbufItems kNone;
  return record.definition_ != nullptr ? record.definition_->items : kNone;
}

void ObjectAccess::setDefinition(AcDbSymbolTableRecord& record, ResbufItems items) {
  record.definition_ = items.empty() ? nullptr
                                     : std::make_unique<AcDbSymbolTableRecord::Definition>(
                                           AcDbSymbolTableRecord::Definition{std::move(items)});
}

}  // namespace tarn::host

// The two name look-ups do not assert: the host itself looks here while a table is being changed.

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
  name = name_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
  return acutNewString(name_.c_str(), name);
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
  assertWriteEnabled();
  if (name == nullptr || *name == 0) return Acad::eInvalidInput;
  const auto* table = AcDbSymbolTable::cast(tarn::host::peek(ownerId()));
  AcDbObjectId other;
  if (table != nullptr && table->getIdAt(name, other) == Acad::eOk && other != objectId()) {
    return Acad::eDuplicateRecordName;
  }
  name_ = name;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeString(name_.c_str());
  return tarn::host::writeItems(*filer, tarn::host::ObjectAccess::definition(*this));
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::ResbufItems items;
  if (tarn::host::readText(*filer, name_) != Acad::eOk ||
      tarn::host::readItems(*filer, items) != Acad::eOk) {
    return filer->filerStatus();
  }
  tarn::host::ObjectAccess::setDefinition(*this, std::move(items));
  return Acad::eOk;
}

AcDbSymbolTableIterator::AcDbSymbolTableIterator(const AcDbSymbolTable& table) {
  for (const AcDbObjectId& id : table.recordIds()) {
    if (!id.isErased()) ids_.append(id);
  }
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[position_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record,
                                                     AcDb::OpenMode mode) const {
  record = nullptr;
  return done() ? Acad::eInvalidIndex : acdbOpenObject(record, ids_[position_], mode);
}

AcRxClass* AcDbSymbolTable::recordClass() const {
  return AcDbSymbolTableRecord::desc();
}

Acad::ErrorStatus AcDbSymbolTable::getIdAt(const ACHAR* name, AcDbObjectId& id,
                                           bool getErased) const {
  if (name == nullptr) return Acad::eInvalidInput;
  Acad::ErrorStatus status = Acad::eKeyNotFound;
  for (const AcDbObjectId& candidate : records_) {
    const auto* record = AcDbSymbolTableRecord::cast(tarn::host::peek(candidate));
    const ACHAR* known = L"";
    if (record == nullptr || record->getName(known) != Acad::eOk) continue;
    if (!tarn::equalsIgnoreCase(std::wstring_view(known), std::wstring_view(name))) continue;
    if (record->isErased() && !getErased) {
      status = Acad::eWasErased;
      continue;
    }
    id = candidate;
    if (!record->isErased()) return Acad::eOk;
    status = Acad::eOk;
  }
  return status;
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
  AcDbObjectId id;
  return getIdAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
  return records_.contains(id) && !id.isErased();
}

Acad::ErrorStatus AcDbSymbolTable::addRecord(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (record == nullptr) return Acad::eNullObjectPointer;
  if (database() == nullptr) return Acad::eNoDatabase;
  if (!record->isKindOf(recordClass())) return Acad::eNotThatKindOfClass;
  const ACHAR* name = L"";
  record->getName(name);
  if (*name == 0) return Acad::eInvalidInput;
  if (has(name)) return Acad::eDuplicateRecordName;
  assertWriteEnabled();
  const Acad::ErrorStatus status = database()->addAcDbObject(id, record);
  if (status != Acad::eOk) return status;
  tarn::host::ObjectAccess::setOwner(*record, objectId());
  records_.append(id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator) const {
  assertReadEnabled();
  iterator = new AcDbSymbolTableIterator(*this);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  return status == Acad::eOk ? tarn::host::writeIds(*filer, records_) : status;
}

Acad::ErrorStatus AcDbSymbolTable::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  return status == Acad::eOk ? tarn::host::readIds(*filer, records_) : status;
}
