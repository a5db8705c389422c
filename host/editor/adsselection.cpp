// Selection sets and entity names of the function interface.
#include <map>
#include <vector>

#include "acedads.h"
#include "base/text.h"
#include "dbents.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/entityfilter.h"
#include "host/editor/hostapp.h"
#include "host/editor/inputvalues.h"
#include "host/editor/picking.h"
#include "host/editor/pointinput.h"
#include "host/editor/sysvars.h"

using tarn::host::EntityIds;
using tarn::host::GroundPoint;
using tarn::host::HostApp;
using tarn::host::SelectionMemory;

namespace {

/// Open sets by their number.
struct SelectionSets {
  std::map<Adesk::LongPtr, EntityIds> sets;
  Adesk::LongPtr lastNumber = 0;
};

SelectionSets& selections() {
  static SelectionSets all;
  return all;
}

EntityIds* findSet(const ads_name set) {
  if (set == nullptr) return nullptr;
  const auto found = selections().sets.find(set[0]);
  return set[0] == 0 || found == selections().sets.end() ? nullptr : &found->second;
}

void store(EntityIds ids, ads_name set) {
  SelectionSets& all = selections();
  set[0] = ++all.lastNumber;
  set[1] = 0;
  all.sets[set[0]] = std::move(ids);
}

GroundPoint groundOf(const void* point) {
  const auto* coordinates = static_cast<const ads_real*>(point);
  return {coordinates[0], coordinates[1]};
}

SelectionMemory& memory() {
  return HostApp::instance()->documents().current().selection();
}

enum class Selected { kDone, kCancelled, kRefused };

/// Asks, or takes what was selected before the command.
Selected selectByUser(const resbuf* filter, EntityIds& ids) {
  HostApp& app = *HostApp::instance();
  if (memory().pickFirstUsable) {
    ids = tarn::host::usable(app, std::exchange(memory().pickFirst, {}), filter);
    memory().pickFirstUsable = false;
    app.frontEnd().displayChanged();
    if (!ids.empty()) {
      app.print("\n" + std::to_string(ids.size()) + " found.\n");
      return Selected::kDone;
    }
  }
  auto chosen = tarn::host::askEntities(app, "\nSelect objects: ", filter);
  if (!chosen) return Selected::kCancelled;
  ids = std::move(*chosen);
  return Selected::kDone;
}

EntityIds lastOf(const EntityIds& ids) {
  return ids.empty() ? EntityIds() : EntityIds{ids.back()};
}

Selected selectByMode(const std::wstring& mode, const void* first, const void* second,
                      EntityIds& ids) {
  HostApp& app = *HostApp::instance();
  tarn::host::HostDocument& document = app.documents().current();
  if (mode == L"x") {
    ids = tarn::host::allEntities(document);
  } else if (mode == L"a") {
    ids = tarn::host::currentSpaceEntities(document);
  } else if (mode == L"l") {
    ids = lastOf(tarn::host::currentSpaceEntities(document));
  } else if (mode == L"p") {
    ids = memory().previous;
  } else if (mode == L"i") {
    ids = memory().pickFirst;
  } else if ((mode == L"w" || mode == L"c") && first != nullptr && second != nullptr) {
    ids = tarn::host::entitiesInWindow(app, groundOf(first), groundOf(second), mode == L"c");
  } else if (mode.empty() && first != nullptr) {
    const AcDbObjectId id = tarn::host::entityAt(app, groundOf(first));
    if (!id.isNull()) ids = {id};
  } else {
    return Selected::kRefused;
  }
  return Selected::kDone;
}

EntityIds fitting(const EntityIds& ids, const resbuf* filter) {
  EntityIds kept;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenObject(entity, id, AcDb::kForRead) != Acad::eOk) continue;
    if (filter == nullptr || tarn::host::fitsFilter(*entity, filter)) kept.push_back(id);
    entity->close();
  }
  return kept;
}

}  // namespace

int acedSSGet(const ACHAR* mode, const void* first, const void* second, const resbuf* filter,
              ads_name set) {
  if (HostApp::instance() == nullptr || set == nullptr) return RTERROR;
  ads_name_clear(set);
  // A set that ignored an item of its filter would be wrong.
  if (!tarn::host::isFilterKnown(filter)) return RTERROR;
  std::wstring letters = tarn::toLower(std::wstring_view(mode != nullptr ? mode : L""));
  if (!letters.empty() && letters.front() == L'_') letters.erase(0, 1);
  EntityIds ids;
  const Selected done = letters.empty() && first == nullptr
                            ? selectByUser(filter, ids)
                            : selectByMode(letters, first, second, ids);
  if (done == Selected::kCancelled) return RTCAN;
  if (done == Selected::kRefused) return RTERROR;
  ids = fitting(ids, filter);
  if (ids.empty()) return RTERROR;
  memory().previous = ids;
  store(std::move(ids), set);
  return RTNORM;
}

int acedSSLength(const ads_name set, Adesk::Int32* count) {
  const EntityIds* ids = findSet(set);
  if (ids == nullptr || count == nullptr) return RTERROR;
  *count = static_cast<Adesk::Int32>(ids->size());
  return RTNORM;
}

int acedSSName(const ads_name set, int index, ads_name entity) {
  const EntityIds* ids = findSet(set);
  if (ids == nullptr || index < 0 || static_cast<size_t>(index) >= ids->size()) return RTERROR;
  const AcDbObjectId id = (*ids)[static_cast<size_t>(index)];
  return id.isValid() && acdbGetAdsName(*reinterpret_cast<ads_name*>(entity), id) == Acad::eOk
             ? RTNORM
             : RTERROR;
}

int acedSSAdd(const ads_name entity, const ads_name set, ads_name result) {
  if (result == nullptr) return RTERROR;
  AcDbObjectId id;
  if (entity != nullptr && acdbGetObjectId(id, entity) != Acad::eOk) return RTERROR;
  EntityIds* ids = findSet(set);
  if (set != nullptr && ids == nullptr) return RTERROR;
  if (ids == nullptr) {
    store(id.isNull() ? EntityIds() : EntityIds{id}, result);
    return RTNORM;
  }
  if (!id.isNull()) tarn::host::addMissing(*ids, {id});
  ads_name_set(set, result);
  return RTNORM;
}

int acedSSDel(const ads_name entity, const ads_name set) {
  EntityIds* ids = findSet(set);
  AcDbObjectId id;
  if (ids == nullptr || entity == nullptr || acdbGetObjectId(id, entity) != Acad::eOk) {
    return RTERROR;
  }
  const size_t before = ids->size();
  tarn::host::removeAll(*ids, {id});
  return ids->size() < before ? RTNORM : RTERROR;
}

int acedSSMemb(const ads_name entity, const ads_name set) {
  const EntityIds* ids = findSet(set);
  AcDbObjectId id;
  if (ids == nullptr || entity == nullptr || acdbGetObjectId(id, entity) != Acad::eOk) {
    return RTERROR;
  }
  EntityIds copy = *ids;
  return tarn::host::addMissing(copy, {id}) == 0 ? RTNORM : RTERROR;
}

int acedSSFree(const ads_name set) {
  return set != nullptr && selections().sets.erase(set[0]) == 1 ? RTNORM : RTERROR;
}

int acedSSSetFirst(const ads_name, const ads_name pickFirst) {
  HostApp* app = HostApp::instance();
  const EntityIds* ids = findSet(pickFirst);
  if (app == nullptr || (pickFirst != nullptr && ids == nullptr)) return RTERROR;
  memory().pickFirst = ids != nullptr ? *ids : EntityIds();
  app->frontEnd().displayChanged();
  return RTNORM;
}

int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point) {
  HostApp* app = HostApp::instance();
  if (app == nullptr || entity == nullptr || point == nullptr) return RTERROR;
  ads_name_clear(entity);
  const std::string text = prompt != nullptr ? tarn::toUtf8(prompt) : "\nSelect object: ";
  const int answer = tarn::host::askPickedPoint(text, point);
  if (answer != RTNORM) return answer == RTNONE ? RTERROR : answer;
  const AcDbObjectId id = tarn::host::entityAt(*app, groundOf(point));
  if (id.isNull()) return RTERROR;
  return acdbGetAdsName(*reinterpret_cast<ads_name*>(entity), id) == Acad::eOk ? RTNORM : RTERROR;
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
