// Changes that are taken back before anybody has heard of them.
#include "dbdict.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/database/objectstate.h"
#include "host/database/observer.h"

namespace {

/// What they hold are objects that are there by themselves, and it may be much.
bool isContainer(const AcDbObject& object) {
  return object.isKindOf(AcDbBlockTableRecord::desc()) ||
         object.isKindOf(AcDbSymbolTable::desc()) || object.isKindOf(AcDbDictionary::desc());
}

}  // namespace

namespace tarn::host {

void ObjectAccess::keepState(AcDbObject& object) {
  if (isContainer(object)) return;
  auto& kept = state(*object.database()).before;
  if (kept.count(object.id_) == 0) kept.emplace(object.id_, objectBytes(object));
}

void ObjectAccess::forgetState(const AcDbObject& object) {
  state(*object.database()).before.erase(object.id_);
}

}  // namespace tarn::host

Acad::ErrorStatus AcDbObject::cancel() {
  using tarn::host::ObjectAccess;
  if (!isResident() || !writing_ || notifying_ || isContainer(*this)) return close();
  if (const Acad::ErrorStatus refused = subClose(); refused != Acad::eOk) return refused;
  auto& kept = ObjectAccess::state(*database()).before;
  const bool isNew = appended_;
  // A new one that was erased meanwhile stays so.
  const bool erased = isNew || erased_ != eraseChanged_;
  if (erased != erased_) tarn::host::eraseOwned(extension_, erased);
  if (auto before = kept.extract(id_)) {
    const AcDbObjectId made = extension_;
    restoring_ = tarn::host::Restoring::kChanged;
    tarn::host::readObjectBytes(*this, before.mapped());
    restoring_ = tarn::host::Restoring::kNot;
    if (made != extension_) tarn::host::eraseOwned(made, true);
  }
  const bool wasDrawn = graphicsModified_ || eraseChanged_;
  erased_ = erased;
  modified_ = graphicsModified_ = extendedModified_ = eraseChanged_ = appended_ = false;
  tarn::host::DatabaseObserver* observer = tarn::host::observerOf(*this);
  auto* entity = AcDbEntity::cast(this);
  if (observer != nullptr && entity != nullptr && wasDrawn && !isNew) observer->drawWanted(*entity);
  writing_ = false;
  if (observer != nullptr && isNew) observer->objectErased(*this, true);
  ObjectAccess::tellReactors(*this, [&](AcDbObjectReactor& r) { r.cancelled(this); });
  ObjectAccess::tellReactors(*this, [&](AcDbObjectReactor& r) { r.objectClosed(id_); });
  return Acad::eOk;
}
