// Selection sets and entity names of the function interface.
#include <map>
#include <vector>

#include "acedads.h"
#include "base/text.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"

using tarn::host::HostApp;

namespace {

using Ids = std::vector<AcDbObjectId>;

/// Open sets by their number.
struct SelectionSets {
  std::map<Adesk::LongPtr, Ids> sets;
  Adesk::LongPtr lastNumber = 0;
};

SelectionSets& selections() {
  static SelectionSets all;
  return all;
}

Ids* findSet(const ads_name set) {
  const auto found = selections().sets.find(set[0]);
  return set[0] == 0 || found == selections().sets.end() ? nullptr : &found->second;
}

/// All entities of the current drawing's model space, erased ones left out.
Ids allEntities() {
  Ids ids;
  AcDbDatabase* database = HostApp::instance()->documents().current().database();
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  if (database->getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) return ids;
  if (blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead) == Acad::eOk) {
    for (const AcDbObjectId& id : space->entityIds()) {
      if (!id.isErased()) ids.push_back(id);
    }
    space->close();
  }
  blocks->close();
  return ids;
}

/// What the user picks by words; false when cancelled.
bool askEntities(Ids& ids) {
  for (;;) {
    acedInitGet(0, ACRX_T("ALL Last"));
    ACHAR word[513] = {0};
    const int answer = acedGetKword(ACRX_T("\nSelect objects [ALL/Last]: "), word);
    if (answer == RTCAN) return false;
    if (answer != RTNORM) return true;
    const Ids all = allEntities();
    if (tarn::toUtf8(word) == "ALL") ids = all;
    if (tarn::toUtf8(word) == "Last" && !all.empty()) ids = {all.back()};
    HostApp::instance()->print("\n" + std::to_string(ids.size()) + " selected.\n");
  }
}

void store(Ids ids, ads_name set) {
  SelectionSets& all = selections();
  set[0] = ++all.lastNumber;
  set[1] = 0;
  all.sets[set[0]] = std::move(ids);
}

}  // namespace

int acedSSGet(const ACHAR* mode, const void*, const void*, const resbuf* filter, ads_name set) {
  if (HostApp::instance() == nullptr || set == nullptr) return RTERROR;
  ads_name_clear(set);
  // Filters have no caller; a set that ignored one would be wrong.
  if (filter != nullptr) return RTERROR;
  Ids ids;
  if (mode == nullptr || *mode == 0) {
    if (!askEntities(ids)) return RTCAN;
  } else if (tarn::equalsIgnoreCase(std::wstring_view(mode), L"X") ||
             tarn::equalsIgnoreCase(std::wstring_view(mode), L"A")) {
    ids = allEntities();
  } else if (tarn::equalsIgnoreCase(std::wstring_view(mode), L"L")) {
    ids = allEntities();
    if (ids.size() > 1) ids.erase(ids.begin(), ids.end() - 1);
  } else {
    return RTERROR;
  }
  if (ids.empty()) return RTERROR;
  store(std::move(ids), set);
  return RTNORM;
}

int acedSSLength(const ads_name set, Adesk::Int32* count) {
  const Ids* ids = findSet(set);
  if (ids == nullptr || count == nullptr) return RTERROR;
  *count = static_cast<Adesk::Int32>(ids->size());
  return RTNORM;
}

int acedSSName(const ads_name set, int index, ads_name entity) {
  const Ids* ids = findSet(set);
  if (ids == nullptr || index < 0 || static_cast<size_t>(index) >= ids->size()) return RTERROR;
  const AcDbObjectId id = (*ids)[static_cast<size_t>(index)];
  if (!id.isValid()) return RTERROR;
  entity[0] = id.asOldId();
  entity[1] = 0;
  return RTNORM;
}

int acedSSAdd(const ads_name entity, const ads_name set, ads_name result) {
  if (entity == nullptr) {
    store({}, result);
    return RTNORM;
  }
  AcDbObjectId id;
  if (acdbGetObjectId(id, entity) != Acad::eOk) return RTERROR;
  if (set == nullptr) {
    store({id}, result);
    return RTNORM;
  }
  Ids* ids = findSet(set);
  if (ids == nullptr) return RTERROR;
  ids->push_back(id);
  ads_name_set(set, result);
  return RTNORM;
}

int acedSSFree(const ads_name set) {
  return selections().sets.erase(set[0]) == 1 ? RTNORM : RTERROR;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name entity) {
  if (ads_name_nil(entity)) return Acad::eInvalidAdsName;
  id.setFromOldId(entity[0]);
  return id.isValid() ? Acad::eOk : Acad::eInvalidAdsName;
}

Acad::ErrorStatus acdbGetAdsName(ads_name& entity, AcDbObjectId id) {
  if (!id.isValid()) return Acad::eNullObjectId;
  entity[0] = id.asOldId();
  entity[1] = 0;
  return Acad::eOk;
}
