#include <algorithm>
#include <utility>
#include <vector>

#include "dbfiler.h"
#include "dbmain.h"
#include "host/database/extendeddata.h"
#include "host/database/objectaccess.h"
#include "host/database/observer.h"
#include "rxregsvc.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcRxObject)

namespace {

constexpr int kMostReaders = 256;

}  // namespace

struct AcDbObject::Reactors {
  std::vector<AcDbObjectReactor*> list;
};

AcDbObjectReactor::~AcDbObjectReactor() = default;
AcDbDatabaseReactor::~AcDbDatabaseReactor() = default;

AcDbObject::AcDbObject() = default;

AcDbObject::~AcDbObject() {
  if (reactors_ == nullptr) return;
  const std::vector<AcDbObjectReactor*> told = reactors_->list;
  for (AcDbObjectReactor* reactor : told) reactor->goodbye(this);
}

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
  assertWriteEnabled();
  ownerId_ = owner;
  return Acad::eOk;
}

namespace tarn::host {

Acad::ErrorStatus ObjectAccess::open(AcDbObject& object, AcDb::OpenMode mode, bool openErased) {
  if (object.erased_ && !openErased) return Acad::eWasErased;
  if (object.notifying_) return Acad::eWasOpenForNotify;
  if (object.writing_ && mode != AcDb::kForNotify) return Acad::eWasOpenForWrite;
  if (mode == AcDb::kForWrite && object.readers_ > 0) return Acad::eWasOpenForRead;
  if (mode == AcDb::kForRead && object.readers_ >= kMostReaders) return Acad::eAtMaxReaders;
  if (const Acad::ErrorStatus refused = object.subOpen(mode); refused != Acad::eOk) return refused;
  switch (mode) {
    case AcDb::kForRead:
      ++object.readers_;
      break;
    case AcDb::kForWrite:
      beginWrite(object);
      break;
    case AcDb::kForNotify:
      object.notifying_ = true;
      break;
  }
  return Acad::eOk;
}

std::vector<AcDbObjectReactor*> ObjectAccess::reactorsOf(const AcDbObject& object) {
  if (object.reactors_ == nullptr) return {};
  return object.reactors_->list;
}

void ObjectAccess::beginWrite(AcDbObject& object) {
  object.writing_ = true;
  if (DatabaseObserver* observer = observerOf(object)) observer->objectOpenedForWrite(object);
}

}  // namespace tarn::host

Acad::ErrorStatus AcDbObject::close() {
  if (!isResident() || (readers_ == 0 && !writing_ && !notifying_)) return Acad::eInvalidOpenState;
  if (const Acad::ErrorStatus refused = subClose(); refused != Acad::eOk) return refused;
  if (notifying_) {
    notifying_ = false;
  } else if (writing_) {
    endWrite();
  } else {
    --readers_;
  }
  return Acad::eOk;
}

void AcDbObject::endWrite() {
  tarn::host::ObjectAccess::forgetState(*this);
  writing_ = false;
  appended_ = false;
  const bool eraseChanged = std::exchange(eraseChanged_, false);
  const bool graphics = std::exchange(graphicsModified_, false);
  const bool modified = std::exchange(modified_, false) || graphics;
  if (eraseChanged || modified) tarn::host::ObjectAccess::setChanged(*this);
  tarn::host::DatabaseObserver* observer = tarn::host::observerOf(*this);
  if (observer != nullptr && eraseChanged) observer->objectErased(*this, erased_);
  if (observer != nullptr && modified && !eraseChanged) observer->objectModified(*this);
  tellReactors(eraseChanged, modified);
}

void AcDbObject::tellReactors(bool eraseChanged, bool modified) {
  using tarn::host::Restoring;
  const auto restoring = std::exchange(restoring_, Restoring::kNot);
  const bool extended = std::exchange(extendedModified_, false);
  const AcDbDatabase* own = database();
  const auto tell = [&](auto one, auto all) {
    tarn::host::ObjectAccess::tellReactors(*this, one);
    if (own != nullptr) tarn::host::ObjectAccess::tell(*own, all);
  };
  const auto nobody = [](AcDbDatabaseReactor&) {};
  if (restoring == Restoring::kUnappended) {
    tell([&](AcDbObjectReactor& r) { r.unappended(this); },
         [&](AcDbDatabaseReactor& r) { r.objectUnAppended(own, this); });
  } else if (restoring == Restoring::kReappended) {
    tell([&](AcDbObjectReactor& r) { r.reappended(this); },
         [&](AcDbDatabaseReactor& r) { r.objectReAppended(own, this); });
  } else if (eraseChanged) {
    tell([&](AcDbObjectReactor& r) { r.erased(this, erased_); },
         [&](AcDbDatabaseReactor& r) { r.objectErased(own, this, erased_); });
  } else if (modified) {
    if (restoring == Restoring::kChanged) {
      tell([&](AcDbObjectReactor& r) { r.modifyUndone(this); }, nobody);
    }
    tell([&](AcDbObjectReactor& r) { r.modified(this); },
         [&](AcDbDatabaseReactor& r) { r.objectModified(own, this); });
  }
  if (extended) tell([&](AcDbObjectReactor& r) { r.modifiedXData(this); }, nobody);
  tell([&](AcDbObjectReactor& r) { r.objectClosed(id_); }, nobody);
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  if (!isResident() || readers_ == 0) return Acad::eInvalidOpenState;
  if (readers_ > 1) return Acad::eHadMultipleReaders;
  readers_ = 0;
  tarn::host::ObjectAccess::beginWrite(*this);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (!isResident() || !writing_) return Acad::eInvalidOpenState;
  endWrite();
  readers_ = 1;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeFromNotify(Adesk::Boolean& wasWritable) {
  if (!isResident() || !notifying_) return Acad::eInvalidOpenState;
  wasWritable = writing_;
  notifying_ = false;
  if (!writing_) tarn::host::ObjectAccess::beginWrite(*this);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeToNotify(Adesk::Boolean wasWritable) {
  if (!isResident() || !writing_) return Acad::eInvalidOpenState;
  if (!wasWritable) endWrite();
  notifying_ = true;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(Adesk::Boolean erasing) {
  if (!isResident()) return Acad::eNoDatabase;
  if (!writing_) return Acad::eNotOpenForWrite;
  if (erased_ == erasing) return erasing ? Acad::eWasErased : Acad::eWasNotErased;
  if (!modified_ && !appended_) tarn::host::ObjectAccess::keepState(*this);
  if (const Acad::ErrorStatus refused = subErase(erasing); refused != Acad::eOk) return refused;
  erased_ = erasing;
  eraseChanged_ = !eraseChanged_;
  modified_ = true;
  tarn::host::eraseOwned(extension_, erasing);
  return Acad::eOk;
}

void AcDbObject::assertReadEnabled() const {
  if (!isReadEnabled()) acrx_abort(L"eNotOpenForRead");
}

void AcDbObject::assertWriteEnabled(Adesk::Boolean /*autoUndo*/, Adesk::Boolean recordModified) {
  if (!isWriteEnabled()) acrx_abort(L"eNotOpenForWrite");
  if (!recordModified || modified_) return;
  if (!isResident() || appended_ || restoring_ != tarn::host::Restoring::kNot) {
    modified_ = true;
    return;
  }
  tarn::host::ObjectAccess::keepState(*this);
  modified_ = true;
  tarn::host::ObjectAccess::tellReactors(*this,
                                         [&](AcDbObjectReactor& r) { r.openedForModify(this); });
  tarn::host::ObjectAccess::tell(
      *database(), [&](AcDbDatabaseReactor& r) { r.objectOpenedForModify(database(), this); });
}

void AcDbObject::assertNotifyEnabled() const {
  if (!isNotifyEnabled() && !isReadEnabled()) acrx_abort(L"eNotOpenForNotify");
}

void AcDbObject::addReactor(AcDbObjectReactor* reactor) const {
  if (reactors_ == nullptr) reactors_ = std::make_unique<Reactors>();
  std::vector<AcDbObjectReactor*>& list = reactors_->list;
  if (std::find(list.begin(), list.end(), reactor) == list.end()) list.push_back(reactor);
}

void AcDbObject::removeReactor(AcDbObjectReactor* reactor) const {
  if (reactors_ == nullptr) return;
  std::vector<AcDbObjectReactor*>& list = reactors_->list;
  list.erase(std::remove(list.begin(), list.end(), reactor), list.end());
}

Acad::ErrorStatus AcDbObject::dwgOut(AcDbDwgFiler* filer) const {
  return dwgOutFields(filer);
}

Acad::ErrorStatus AcDbObject::dwgIn(AcDbDwgFiler* filer) {
  return dwgInFields(filer);
}

Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler* filer) const {
  assertReadEnabled();
  filer->writeSoftPointerId(ownerId_);
  filer->writeHardOwnershipId(extension_);
  return tarn::host::writeItems(*filer, tarn::host::ObjectAccess::extendedData(*this));
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler* filer) {
  assertWriteEnabled();
  filer->readSoftPointerId(&ownerId_);
  filer->readHardOwnershipId(&extension_);
  tarn::host::ResbufItems items;
  if (tarn::host::readItems(*filer, items) != Acad::eOk) return filer->filerStatus();
  tarn::host::ObjectAccess::setExtendedData(*this, std::move(items));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::subOpen(AcDb::OpenMode) {
  return Acad::eOk;
}
Acad::ErrorStatus AcDbObject::subErase(Adesk::Boolean) {
  return Acad::eOk;
}
Acad::ErrorStatus AcDbObject::subClose() {
  return Acad::eOk;
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
  object = nullptr;
  if (id.isNull()) return Acad::eNullObjectId;
  AcDbObject* found = tarn::host::peek(id);
  if (found == nullptr) return Acad::ePermanentlyErased;
  const Acad::ErrorStatus status = tarn::host::ObjectAccess::open(*found, mode, openErased);
  if (status == Acad::eOk) object = found;
  return status;
}
