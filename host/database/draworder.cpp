#include "host/database/draworder.h"

#include <algorithm>
#include <set>
#include <vector>

#include "dbdict.h"
#include "dbfiler.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "sorttab.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        0, SORTENTSTABLE, ObjectDBX Classes)

namespace {

constexpr const wchar_t* kEntry = L"ACAD_SORTENTS";

Adesk::UInt64 handleOf(AcDbObjectId id) {
  return id.handle().value();
}

/// Null for a block without a table. Nothing needs to be open.
AcDbObjectId tableOf(const AcDbBlockTableRecord& block) {
  using tarn::host::ObjectAccess;
  const ObjectAccess::Look lookAtBlock(const_cast<AcDbBlockTableRecord&>(block));
  auto* dictionary = AcDbDictionary::cast(tarn::host::peek(block.extensionDictionary()));
  if (dictionary == nullptr) return {};
  const ObjectAccess::Look look(*dictionary);
  AcDbObjectId id;
  return dictionary->getAt(kEntry, id) == Acad::eOk ? id : AcDbObjectId();
}

AcDbObjectIdArray entitiesOf(AcDbObjectId block) {
  const auto* record = AcDbBlockTableRecord::cast(tarn::host::peek(block));
  return record != nullptr ? record->entityIds() : AcDbObjectIdArray();
}

}  // namespace

AcDbObjectId AcDbSortentsTable::blockId() const {
  assertReadEnabled();
  return block_;
}

const AcDbSortentsTable::Places& AcDbSortentsTable::places() const {
  assertReadEnabled();
  return places_;
}

Acad::ErrorStatus AcDbSortentsTable::setPlaces(AcDbObjectId block, Places places) {
  assertWriteEnabled();
  block_ = block;
  places_ = std::move(places);
  return Acad::eOk;
}

Adesk::UInt64 AcDbSortentsTable::placeOf(AcDbObjectId entity) const {
  const auto found = places_.find(handleOf(entity));
  return found != places_.end() ? found->second : handleOf(entity);
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& entities) const {
  assertReadEnabled();
  std::vector<std::pair<Adesk::UInt64, AcDbObjectId>> order;
  for (const AcDbObjectId& id : entitiesOf(block_)) order.emplace_back(placeOf(id), id);
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  entities = entitiesOf(block_);
  if (places_.empty()) return Acad::eOk;
  entities = AcDbObjectIdArray();
  for (const auto& [place, id] : order) entities.append(id);
  return Acad::eOk;
}

/// The places that there are are given out anew; where a damaged file has one of them twice, those
/// are the entities' own handles.
Acad::ErrorStatus AcDbSortentsTable::move(const AcDbObjectIdArray& entities, AcDbObjectId target,
                                          bool above) {
  assertWriteEnabled();
  const std::set<AcDbStub*> moved(entities.begin(), entities.end());
  AcDbObjectIdArray before;
  getFullDrawOrder(before);
  if (!target.isNull() && (moved.count(target) > 0 || !before.contains(target))) {
    return Acad::eInvalidInput;
  }
  std::vector<AcDbObjectId> chosen;
  std::vector<AcDbObjectId> order;
  std::set<Adesk::UInt64> places;
  for (const AcDbObjectId& id : before) {
    (moved.count(id) > 0 ? chosen : order).push_back(id);
    places.insert(placeOf(id));
  }
  auto at = target.isNull() ? (above ? order.end() : order.begin())
                            : std::find(order.begin(), order.end(), target) + (above ? 1 : 0);
  order.insert(at, chosen.begin(), chosen.end());
  if (places.size() != order.size()) {
    places.clear();
    for (const AcDbObjectId& id : order) places.insert(handleOf(id));
  }
  auto place = places.begin();
  for (const AcDbObjectId& id : order) {
    if (*place == handleOf(id)) {
      places_.erase(handleOf(id));
    } else {
      places_[handleOf(id)] = *place;
    }
    ++place;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& entities) {
  return move(entities, {}, false);
}
Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& entities) {
  return move(entities, {}, true);
}
Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& entities,
                                               AcDbObjectId target) {
  return target.isNull() ? Acad::eInvalidInput : move(entities, target, false);
}
Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& entities,
                                               AcDbObjectId target) {
  return target.isNull() ? Acad::eInvalidInput : move(entities, target, true);
}

Acad::ErrorStatus AcDbSortentsTable::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeHardPointerId(block_);
  filer->writeInt32(static_cast<Adesk::Int32>(places_.size()));
  for (const auto& [entity, place] : places_) {
    filer->writeInt64(static_cast<Adesk::Int64>(entity));
    filer->writeInt64(static_cast<Adesk::Int64>(place));
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  AcDbObjectId block;
  Adesk::Int32 count = 0;
  filer->readHardPointerId(&block);
  filer->readInt32(&count);
  Places read;
  for (Adesk::Int32 i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
    Adesk::Int64 entity = 0;
    Adesk::Int64 place = 0;
    filer->readInt64(&entity);
    filer->readInt64(&place);
    read[static_cast<Adesk::UInt64>(entity)] = static_cast<Adesk::UInt64>(place);
  }
  return filer->filerStatus() == Acad::eOk ? setPlaces(block, std::move(read))
                                           : filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::openFor(AcDbBlockTableRecord& block, AcDbSortentsTable*& table,
                                             AcDb::OpenMode mode, bool createIfNecessary) {
  table = nullptr;
  if (block.database() == nullptr) return Acad::eNoDatabase;
  const AcDbObjectId known = tableOf(block);
  if (!known.isErased()) return acdbOpenObject(table, known, mode);
  if (!createIfNecessary) return Acad::eKeyNotFound;
  if (block.extensionDictionary().isNull()) {
    const Acad::ErrorStatus status = block.createExtensionDictionary();
    if (status != Acad::eOk) return status;
  }
  const AcDbObjectPointer<AcDbDictionary> dictionary(block.extensionDictionary(), AcDb::kForWrite);
  if (dictionary.openStatus() != Acad::eOk) return dictionary.openStatus();
  auto* made = new AcDbSortentsTable;
  made->setPlaces(block.objectId(), {});
  AcDbObjectId id;
  const Acad::ErrorStatus status = dictionary->setAt(kEntry, made, id);
  if (status != Acad::eOk) {
    delete made;
    return status;
  }
  if (mode == AcDb::kForWrite) {
    table = made;
    return Acad::eOk;
  }
  made->close();
  return acdbOpenObject(table, id, mode);
}

namespace tarn::host {

AcDbObjectIdArray drawnOrder(const AcDbBlockTableRecord& block) {
  auto* table = AcDbSortentsTable::cast(peek(tableOf(block)));
  if (table == nullptr || table->isErased()) return block.entityIds();
  const ObjectAccess::Look look(*table);
  AcDbObjectIdArray order;
  table->getFullDrawOrder(order);
  return order;
}

}  // namespace tarn::host
