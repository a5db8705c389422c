#include "host/filing/undolog.h"

#include <algorithm>
#include <utility>

#include "dbmain.h"
#include "host/database/objectaccess.h"
#include "host/database/objectstate.h"

namespace tarn::host {

void UndoLog::objectAppended(AcDbObject& object) {
  if (!recording_ || applying_) return;
  const AcDbObjectId id = object.objectId();
  if (!touchedAt_.emplace(id, touched_.size()).second) return;
  touched_.push_back({id, true, true, {}});
}

void UndoLog::objectWillChange(AcDbObject& object) {
  if (!recording_ || applying_) return;
  const AcDbObjectId id = object.objectId();
  if (!touchedAt_.emplace(id, touched_.size()).second) return;
  touched_.push_back({id, false, object.isErased(), objectBytes(object)});
}

void UndoLog::headerWillChange() {
  if (!recording_ || applying_ || headerBefore_) return;
  headerBefore_ = ObjectAccess::state(database_).header;
}

void UndoLog::endStep(const std::string& name) {
  Entry entry;
  entry.name = name;
  touchedAt_.clear();
  std::vector<Touched> stillOpen;
  for (Touched& before : std::exchange(touched_, {})) {
    AcDbObject* object = peek(before.id);
    if (object == nullptr) continue;
    Change change{before.id, before.erased, object->isErased(), before.appended, {}};
    const bool isOpen = object->isWriteEnabled();
    // Of a new object only the mark matters: as it is now it comes back.
    if (!before.appended || isOpen) {
      Bytes now = objectBytes(*object);
      if (!before.appended) change.delta = ByteDelta::between(before.bytes, now);
      if (isOpen) stillOpen.push_back({before.id, false, object->isErased(), std::move(now)});
    }
    if (change.erasedBefore != change.erasedAfter || !change.delta.isEmpty()) {
      entry.changes.push_back(std::move(change));
    }
  }
  for (Touched& open : stillOpen) {
    touchedAt_.emplace(open.id, touched_.size());
    touched_.push_back(std::move(open));
  }
  if (const auto before = std::exchange(headerBefore_, std::nullopt)) {
    const HeaderVariables& now = ObjectAccess::state(database_).header;
    if (!(*before == now)) entry.header = HeaderChange{*before, now};
  }
  if (entry.changes.empty() && !entry.header) return;
  undone_.clear();
  done_.push_back(std::move(entry));
  dropOldest();
}

void UndoLog::dropOldest() {
  if (limit_ > 0 && done_.size() > limit_) {
    done_.erase(done_.begin(), done_.end() - static_cast<std::ptrdiff_t>(limit_));
  }
}

void UndoLog::setMark() {
  done_.push_back({Kind::kMark, {}, {}, {}});
}

void UndoLog::beginGroup() {
  endGroup();
  done_.push_back({Kind::kGroupBegin, {}, {}, {}});
}

bool UndoLog::endGroup() {
  const auto begin = std::find_if(done_.rbegin(), done_.rend(), [](const Entry& entry) {
    return entry.kind == Kind::kGroupBegin;
  });
  if (begin == done_.rend()) return false;
  const auto first = std::prev(begin.base());
  Entry group;
  group.name = "GROUP";
  for (auto entry = first; entry != done_.end(); ++entry) {
    std::move(entry->changes.begin(), entry->changes.end(), std::back_inserter(group.changes));
    if (!entry->header) continue;
    if (!group.header) group.header = entry->header;
    group.header->after = entry->header->after;
  }
  done_.erase(first, done_.end());
  if (!group.changes.empty() || group.header) done_.push_back(std::move(group));
  return true;
}

bool UndoLog::hasMark() const {
  return std::any_of(done_.begin(), done_.end(),
                     [](const Entry& entry) { return entry.kind == Kind::kMark; });
}

UndoLog::Result UndoLog::undo() {
  while (!done_.empty()) {
    if (isBusy(done_.back())) return {Outcome::kBusy, {}};
    Entry entry = std::move(done_.back());
    done_.pop_back();
    if (entry.kind == Kind::kMark) return {Outcome::kMark, {}};
    if (entry.kind == Kind::kGroupBegin) continue;
    apply(entry, false);
    Result result{Outcome::kDone, entry.name};
    undone_.push_back(std::move(entry));
    return result;
  }
  return {Outcome::kNothingLeft, {}};
}

UndoLog::Result UndoLog::redo() {
  if (undone_.empty()) return {Outcome::kNothingLeft, {}};
  if (isBusy(undone_.back())) return {Outcome::kBusy, {}};
  Entry entry = std::move(undone_.back());
  undone_.pop_back();
  apply(entry, true);
  Result result{Outcome::kDone, entry.name};
  done_.push_back(std::move(entry));
  return result;
}

bool UndoLog::isBusy(const Entry& entry) const {
  return std::any_of(entry.changes.begin(), entry.changes.end(), [](const Change& change) {
    const AcDbObject* object = peek(change.id);
    return object != nullptr && ObjectAccess::isOpen(*object);
  });
}

/// All objects are brought to their state before anybody is told of the first, so that whoever is
/// told finds the whole drawing as it was.
void UndoLog::apply(const Entry& entry, bool forward) {
  applying_ = true;
  struct Restored {
    AcDbObject* object;
    Bytes bytes;
    bool changed = false;
  };
  std::vector<Restored> restored;  // one an object, however often it changed
  std::unordered_map<AcDbStub*, size_t> places;
  const auto restore = [&](const Change& change) {
    AcDbObject* object = peek(change.id);
    if (object == nullptr) return;
    const auto [place, isNew] = places.emplace(change.id, restored.size());
    if (isNew) {
      restored.push_back({object, objectBytes(*object)});
      ObjectAccess::beginRestore(*object, Restoring::kChanged);
    }
    if (change.appended) {
      ObjectAccess::beginRestore(*object,
                                 forward ? Restoring::kReappended : Restoring::kUnappended);
    }
    Restored& state = restored[place->second];
    const bool fits =
        forward ? change.delta.forward(state.bytes) : change.delta.backward(state.bytes);
    state.changed = state.changed || (fits && !change.delta.isEmpty());
    ObjectAccess::setErased(*object, forward ? change.erasedAfter : change.erasedBefore);
  };
  if (forward) {
    for (const Change& change : entry.changes) restore(change);
  } else {
    for (auto change = entry.changes.rbegin(); change != entry.changes.rend(); ++change) {
      restore(*change);
    }
  }
  HeaderVariables& header = ObjectAccess::state(database_).header;
  const HeaderVariables headerBefore = header;
  if (entry.header) header = forward ? entry.header->after : entry.header->before;
  for (const Restored& state : restored) {
    if (state.changed) readObjectBytes(*state.object, state.bytes);
  }
  for (const Restored& state : restored) state.object->close();
  applying_ = false;
  if (entry.header) tellRestored(database_, headerBefore);
}

void UndoLog::clear() {
  touched_.clear();
  touchedAt_.clear();
  headerBefore_.reset();
  done_.clear();
  undone_.clear();
}

void UndoLog::setRecording(bool on) {
  if (!on) clear();
  recording_ = on;
}

void UndoLog::setLimit(size_t steps) {
  limit_ = steps;
  dropOldest();
}

}  // namespace tarn::host
