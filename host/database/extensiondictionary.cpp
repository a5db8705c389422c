// Extension dictionaries: made, erased and brought back with their objects.
#include "dbdict.h"
#include "dbmain.h"
#include "host/database/objectaccess.h"

namespace tarn::host {

namespace {

void (*copyCompleter)(AcDbObject&) = nullptr;

}  // namespace

void ObjectAccess::setCopyCompleter(void (*complete)(AcDbObject&)) {
  copyCompleter = complete;
}

void ObjectAccess::completeCopy(AcDbObject& object) {
  if (copyCompleter != nullptr && !object.copiedFrom_.isNull()) copyCompleter(object);
}

void ObjectAccess::clearEntries(AcDbDictionary& dictionary) {
  dictionary.entries_.clear();
}

void eraseOwned(AcDbObjectId id, bool erasing) {
  const AcDbObject* known = peek(id);
  AcDbObject* object = nullptr;
  if (known == nullptr || known->isErased() == erasing ||
      acdbOpenAcDbObject(object, id, AcDb::kForWrite, true) != Acad::eOk) {
    return;
  }
  static_cast<void>(object->erase(erasing));
  object->close();
}

}  // namespace tarn::host

AcDbObjectId AcDbObject::extensionDictionary() const {
  assertReadEnabled();
  return extension_.isErased() ? AcDbObjectId() : extension_;
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
  if (!isResident()) return Acad::eNoDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!extensionDictionary().isNull()) return Acad::eAlreadyInDb;
  assertWriteEnabled();
  auto* dictionary = new AcDbDictionary;
  tarn::host::ObjectAccess::setOwner(*dictionary, objectId());
  AcDbObjectId id;
  const Acad::ErrorStatus status = database()->addAcDbObject(id, dictionary);
  if (status != Acad::eOk) {
    delete dictionary;
    return status;
  }
  extension_ = id;
  return dictionary->close();
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
  if (!isResident()) return Acad::eNoDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  AcDbDictionary* dictionary = nullptr;
  Acad::ErrorStatus status = acdbOpenObject(dictionary, extensionDictionary(), AcDb::kForWrite);
  if (status != Acad::eOk) return status;
  status = dictionary->numEntries() > 0 ? Acad::eContainerNotEmpty : dictionary->erase();
  dictionary->close();
  if (status != Acad::eOk) return status;
  assertWriteEnabled();
  extension_.setNull();
  return Acad::eOk;
}
