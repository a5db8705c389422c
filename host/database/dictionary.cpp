#include "dbdict.h"

#include "acutmem.h"
#include "base/text.h"
#include "dbfiler.h"
#include "host/database/objectaccess.h"
#include "host/database/recordfiling.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        DICTIONARY, ObjectDBX Classes)

namespace {

std::wstring keyOf(const ACHAR* name) {
  return name != nullptr ? tarn::toLower(std::wstring_view(name)) : std::wstring();
}

}  // namespace

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* name, AcDbObjectId& id) const {
  assertReadEnabled();
  const auto found = entries_.find(keyOf(name));
  if (found == entries_.end() || found->second.id.isErased()) return Acad::eKeyNotFound;
  id = found->second.id;
  return Acad::eOk;
}

bool AcDbDictionary::has(const ACHAR* name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
  assertReadEnabled();
  for (const auto& [key, entry] : entries_) {
    if (entry.id == id) return !id.isErased();
  }
  return false;
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, ACHAR*& name) const {
  assertReadEnabled();
  for (const auto& [key, entry] : entries_) {
    if (entry.id == id) return acutNewString(entry.name.c_str(), name);
  }
  return Acad::eKeyNotFound;
}

Adesk::UInt32 AcDbDictionary::numEntries() const {
  assertReadEnabled();
  Adesk::UInt32 count = 0;
  for (const auto& [key, entry] : entries_) count += entry.id.isErased() ? 0 : 1;
  return count;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* name, AcDbObject* object, AcDbObjectId& id) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (name == nullptr || *name == 0) return Acad::eInvalidKey;
  if (object == nullptr) return Acad::eNullObjectPointer;
  if (database() == nullptr) return Acad::eNoDatabase;
  if (!object->objectId().isNull() && object->database() != database()) return Acad::eWrongDatabase;
  AcDbObjectId earlier;
  if (getAt(name, earlier) == Acad::eOk && earlier != object->objectId()) {
    AcDbObject* replaced = nullptr;
    Acad::ErrorStatus status = acdbOpenObject(replaced, earlier, AcDb::kForWrite);
    if (status != Acad::eOk) return status;
    status = replaced->erase();
    replaced->close();
    if (status != Acad::eOk) return status;
  }
  assertWriteEnabled();
  tarn::host::ObjectAccess::setOwner(*object, objectId());
  id = object->objectId();
  if (id.isNull()) {
    const Acad::ErrorStatus status = database()->addAcDbObject(id, object);
    if (status != Acad::eOk) return status;
  }
  entries_[keyOf(name)] = Entry{name, id};
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* name) {
  assertWriteEnabled();
  return entries_.erase(keyOf(name)) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
  assertWriteEnabled();
  for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
    if (entry->second.id != id) continue;
    entries_.erase(entry);
    return Acad::eOk;
  }
  return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::subErase(Adesk::Boolean erasing) {
  const std::map<std::wstring, Entry> all = entries_;
  for (const auto& [key, entry] : all) {
    const AcDbObject* owned = tarn::host::peek(entry.id);
    if (owned == nullptr || owned->ownerId() != objectId()) continue;
    // What was erased before this stays so when this comes back.
    if (erasing && owned->isErased()) entries_.erase(key);
    tarn::host::eraseOwned(entry.id, erasing);
  }
  return Acad::eOk;
}

AcDbDictionaryIterator* AcDbDictionary::newIterator() const {
  assertReadEnabled();
  return new AcDbDictionaryIterator(*this);
}

Acad::ErrorStatus AcDbDictionary::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeInt32(static_cast<Adesk::Int32>(entries_.size()));
  for (const auto& [key, entry] : entries_) {
    filer->writeString(entry.name.c_str());
    filer->writeSoftOwnershipId(entry.id);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  Adesk::Int32 count = 0;
  filer->readInt32(&count);
  std::map<std::wstring, Entry> read;
  for (Adesk::Int32 i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
    Entry entry;
    if (tarn::host::readText(*filer, entry.name) != Acad::eOk) break;
    if (filer->readSoftOwnershipId(&entry.id) != Acad::eOk) break;
    std::wstring key = keyOf(entry.name.c_str());
    read.emplace(std::move(key), std::move(entry));
  }
  if (filer->filerStatus() == Acad::eOk) entries_ = std::move(read);
  return filer->filerStatus();
}

AcDbDictionaryIterator::AcDbDictionaryIterator(const AcDbDictionary& dictionary) {
  for (const auto& [key, entry] : dictionary.entries_) {
    if (!entry.id.isErased()) entries_.push_back(entry);
  }
}
