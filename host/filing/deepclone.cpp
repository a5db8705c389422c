#include "host/filing/deepclone.h"

#include <algorithm>
#include <memory>

#include "dbdict.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/memoryfiler.h"
#include "host/database/objectaccess.h"
#include "host/database/resbufitems.h"
#include "host/filing/entitycodec.h"
#include "host/filing/proxies.h"

namespace tarn::host {

namespace {

constexpr short kText = 1000;
constexpr short kApplication = 1001;
constexpr short kHandle = 1005;

/// Gives every id that is read to the cloner first.
class TranslatingFiler : public MemoryFiler {
 public:
  TranslatingFiler(std::vector<char> bytes, DeepCloner& cloner)
      : MemoryFiler(std::move(bytes), AcDb::kDeepCloneFiler), cloner_(cloner) {}
  Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) override {
    return translated(MemoryFiler::readHardOwnershipId(id), id);
  }
  Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) override {
    return translated(MemoryFiler::readSoftOwnershipId(id), id);
  }
  Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) override {
    return translated(MemoryFiler::readHardPointerId(id), id);
  }
  Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) override {
    return translated(MemoryFiler::readSoftPointerId(id), id);
  }

 private:
  Acad::ErrorStatus translated(Acad::ErrorStatus status, AcDbObjectId* id) {
    if (status == Acad::eOk) *id = cloner_.translate(*id);
    return status;
  }
  DeepCloner& cloner_;
};

const std::wstring& textOf(const ResbufItem& item) {
  static const std::wstring kNone;
  const auto* text = std::get_if<std::wstring>(&item.value);
  return text != nullptr ? *text : kNone;
}

/// The columns of a text are texts of their own, which belong to one text only.
void dropColumns(ResbufItems& items) {
  for (const wchar_t* part : {L"ACAD_MTEXT_COLUMN_INFO_", L"ACAD_MTEXT_COLUMNS_"}) {
    const auto mark = [&](const wchar_t* which) {
      return std::find_if(items.begin(), items.end(), [&](const ResbufItem& item) {
        return item.code == kText && textOf(item) == std::wstring(part) + which;
      });
    };
    const auto begin = mark(L"BEGIN");
    const auto end = mark(L"END");
    if (begin < end && end != items.end()) items.erase(begin, end + 1);
  }
}

/// Extended data of a copy: the target knows the applications, and what only the other drawing has
/// is no longer referred to.
void settleExtendedData(AcDbObject& copy, AcDbDatabase& target, bool isElsewhere) {
  ResbufItems items = ObjectAccess::extendedData(copy);
  if (items.empty()) return;
  dropColumns(items);
  for (ResbufItem& item : items) {
    if (item.code == kApplication) registerApplication(target, textOf(item).c_str());
    if (item.code == kHandle && isElsewhere) item.value = std::wstring(L"0");
  }
  ObjectAccess::setExtendedData(copy, std::move(items));
}

using TableOf = AcDbObjectId (AcDbDatabase::*)() const;
constexpr TableOf kTables[] = {&AcDbDatabase::layerTableId, &AcDbDatabase::blockTableId,
                               &AcDbDatabase::linetypeTableId, &AcDbDatabase::textStyleTableId};

}  // namespace

AcDbObject* DeepCloner::copyOf(const AcDbObject& object) {
  if (object.database() != &target_ && isBoundToDrawing(*object.isA())) return nullptr;
  std::unique_ptr<AcRxObject> made(object.isA()->create());
  auto* copy = AcDbObject::cast(made.get());
  MemoryFiler out(AcDb::kDeepCloneFiler);
  const auto* proxy = AcDbProxyEntity::cast(&object);
  // What stands in a file for another program cannot be told apart from its file.
  if (proxy != nullptr && ProxyAccess::facts(*proxy).filed.empty()) return nullptr;
  if (copy == nullptr || object.dwgOut(&out) != Acad::eOk) return nullptr;
  TranslatingFiler in(out.bytes(), *this);
  const Acad::ErrorStatus read = copy->dwgIn(&in);
  if (read == Acad::eMakeMeProxy && object.database() == &target_) {
    made.reset(readFiled(*object.isA(), out.bytes()));
    copy = AcDbObject::cast(made.get());
    if (copy == nullptr) return nullptr;
  } else if (read != Acad::eOk) {
    return nullptr;
  }
  // Its own comes when a drawing owns it.
  ObjectAccess::setExtension(*copy, {});
  settleExtendedData(*copy, target_, object.database() != &target_);
  const AcDbObjectId source = object.objectId();
  ObjectAccess::setCopiedFrom(*copy, source.isNull() ? ObjectAccess::copiedFrom(object) : source);
  return AcDbObject::cast(made.release());
}

AcDbEntity* DeepCloner::clone(const AcDbEntity& entity) {
  return AcDbEntity::cast(copyOf(entity));
}

void DeepCloner::install() {
  ObjectAccess::setCopyCompleter(&DeepCloner::completeCopy);
}

void DeepCloner::completeCopy(AcDbObject& copy) {
  const AcDbObjectId from = ObjectAccess::copiedFrom(copy);
  const AcDbObject* source = peek(from);
  if (source == nullptr) return;
  const auto told = [&](AcDbObjectReactor& reactor) { reactor.copied(source, &copy); };
  ObjectAccess::tellReactors(*source, told);
  const AcDbObjectId extension = ObjectAccess::extension(*source);
  if (extension.isErased() || !ObjectAccess::extension(copy).isNull()) return;
  DeepCloner cloner(*copy.database());
  cloner.known_[from] = copy.objectId();
  ObjectAccess::setExtension(copy, cloner.copyOwned(extension, copy.objectId()));
}

/// Null for what no class here is made for: it stays in the drawing that it is in.
AcDbObjectId DeepCloner::copyOwned(AcDbObjectId id, AcDbObjectId owner) {
  AcDbObject* source = peek(id);
  if (source == nullptr || source->isErased()) return {};
  const ObjectAccess::Look look(*source);
  AcDbObject* copy = copyOf(*source);
  if (copy == nullptr) return {};
  ObjectAccess::setOwner(*copy, owner);
  if (auto* dictionary = AcDbDictionary::cast(copy)) ObjectAccess::clearEntries(*dictionary);
  AcDbObjectId made;
  if (target_.addAcDbObject(made, copy) != Acad::eOk) {
    delete copy;
    return {};
  }
  known_[id] = made;
  copyEntries(*source, made);
  copy->close();
  return made;
}

void DeepCloner::copyEntries(const AcDbObject& from, AcDbObjectId to) {
  const auto* source = AcDbDictionary::cast(&from);
  if (source == nullptr) return;
  auto& dictionary = *static_cast<AcDbDictionary*>(peek(to));
  const std::unique_ptr<AcDbDictionaryIterator> entries(source->newIterator());
  for (; !entries->done(); entries->next()) {
    const AcDbObject* entry = peek(entries->objectId());
    if (entry == nullptr || entry->ownerId() != from.objectId()) continue;
    const AcDbObjectId copy = copyOwned(entries->objectId(), to);
    if (!copy.isNull()) ObjectAccess::addEntryRead(dictionary, entries->name(), copy);
  }
}

AcDbObjectId DeepCloner::translate(AcDbObjectId id) {
  const auto known = known_.find(id);
  if (known != known_.end()) return known->second;
  if (id.isNull() || id.database() == &target_) return id;
  const AcDbObject* record = peek(id);
  if (record == nullptr || !record->isKindOf(AcDbSymbolTableRecord::desc())) return {};
  return translateRecord(*record);
}

AcDbObjectId DeepCloner::translateRecord(const AcDbObject& record) {
  const AcDbDatabase& source = *record.database();
  for (const TableOf table : kTables) {
    if ((source.*table)() != record.ownerId()) continue;
    const ACHAR* name = L"";
    AcDbSymbolTableRecord::cast(&record)->getName(name);
    const AcDbObjectId tableId = (target_.*table)();
    const auto* there = AcDbSymbolTable::cast(peek(tableId));
    AcDbObjectId id;
    if (there == nullptr || there->getIdAt(name, id) != Acad::eOk) id = copyRecord(record, tableId);
    return known_[record.objectId()] = id;
  }
  return {};
}

AcDbObjectId DeepCloner::copyRecord(const AcDbObject& record, AcDbObjectId tableId) {
  const AcDbObjectPointer<AcDbSymbolTable> table(tableId, AcDb::kForWrite);
  AcDbObject* source = nullptr;
  if (table.openStatus() != Acad::eOk ||
      acdbOpenObject(source, record.objectId(), AcDb::kForRead) != Acad::eOk) {
    return {};
  }
  auto* copy = AcDbSymbolTableRecord::cast(copyOf(*source));
  source->close();
  AcDbObjectId id;
  if (copy == nullptr || table->addRecord(id, copy) != Acad::eOk) {
    delete copy;
    return {};
  }
  copy->close();
  known_[record.objectId()] = id;
  copyBlockEntities(record, id);
  return id;
}

void DeepCloner::copyBlockEntities(const AcDbObject& from, AcDbObjectId to) {
  const auto* source = AcDbBlockTableRecord::cast(&from);
  if (source == nullptr) return;
  const AcDbObjectPointer<AcDbBlockTableRecord> block(to, AcDb::kForWrite);
  if (block.openStatus() != Acad::eOk) return;
  for (const AcDbObjectId& id : source->entityIds()) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    AcDbEntity* copy = clone(*entity.object());
    if (copy == nullptr) continue;
    if (block->appendAcDbEntity(copy) == Acad::eOk) {
      copy->close();
    } else {
      delete copy;
    }
  }
}

}  // namespace tarn::host

/// Through the filer, so that a class needs nothing but its filing.
Acad::ErrorStatus AcDbEntity::subGetTransformedCopy(const AcGeMatrix3d& transform,
                                                    AcDbEntity*& copy) const {
  assertReadEnabled();
  copy = nullptr;
  AcDbDatabase* own =
      database() != nullptr ? database() : acdbHostApplicationServices()->workingDatabase();
  if (own == nullptr) return Acad::eNoDatabase;
  std::unique_ptr<AcDbEntity> made(tarn::host::DeepCloner(*own).clone(*this));
  if (made == nullptr) return Acad::eNotApplicable;
  const Acad::ErrorStatus status = made->transformBy(transform);
  if (status == Acad::eOk) copy = made.release();
  return status;
}
