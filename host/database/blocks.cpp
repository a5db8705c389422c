#include "base/text.h"
#include "dbfiler.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/database/recordfiling.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable, 0)

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
  if (entity == nullptr) return Acad::eNullEntityPointer;
  if (database() == nullptr) return Acad::eMustFirstAddBlockToDb;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!entity->objectId().isNull()) return Acad::eAlreadyInDb;
  assertWriteEnabled();
  if (entity->layerId().isNull()) entity->setLayer(database()->clayer());
  tarn::host::ObjectAccess::setOwner(*entity, objectId());
  const Acad::ErrorStatus status = database()->addAcDbObject(id, entity);
  if (status != Acad::eOk) return status;
  entity->recordGraphicsModified();
  entities_.append(id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator,
                                                    bool atBeginning, bool skipDeleted) const {
  assertReadEnabled();
  iterator = new AcDbBlockTableRecordIterator(entities_, atBeginning, skipDeleted);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& origin) {
  assertWriteEnabled();
  origin_ = origin;
  return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
  const ACHAR* name = L"";
  getName(name);
  const std::wstring lower = tarn::toLower(std::wstring_view(name));
  return lower == L"*model_space" || lower.rfind(L"*paper_space", 0) == 0;
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writePoint3d(origin_);
  return tarn::host::writeIds(*filer, entities_);
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  filer->readPoint3d(&origin_);
  return tarn::host::readIds(*filer, entities_);
}

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(AcDbObjectIdArray ids, bool atBeginning,
                                                           bool skipDeleted)
    : ids_(std::move(ids)) {
  start(atBeginning, skipDeleted);
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  position_ = atBeginning ? 0 : ids_.length() - 1;
  skip(atBeginning ? 1 : -1, skipDeleted);
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  position_ += forward ? 1 : -1;
  skip(forward ? 1 : -1, skipDeleted);
}

void AcDbBlockTableRecordIterator::skip(int direction, bool skipDeleted) {
  while (skipDeleted && !done() && ids_[position_].isErased()) position_ += direction;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[position_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
  entity = nullptr;
  return done() ? Acad::eInvalidIndex : acdbOpenObject(entity, ids_[position_], mode, openErased);
}
