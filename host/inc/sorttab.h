// In which order the entities of a block are drawn.
#pragma once

#include <map>

#include "dbmain.h"

class AcDbBlockTableRecord;

/// Belongs to a block; what is drawn later covers what was drawn before. Entities that it does not
/// name stand where they were made. Changes take the ids in any order and keep the order that these
/// have among themselves; ids that are not of the block are passed over.
class ACADHOST_EXPORT AcDbSortentsTable : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSortentsTable);
  AcDbSortentsTable() = default;

  /// That of an open block, from its extension dictionary; made when it is wanted, for which the
  /// block must be open for write. eKeyNotFound.
  static Acad::ErrorStatus openFor(AcDbBlockTableRecord& block, AcDbSortentsTable*& table,
                                   AcDb::OpenMode mode, bool createIfNecessary = false);
  AcDbObjectId blockId() const;
  Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& entities);
  Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& entities);
  /// eInvalidInput when the target is none of the block's entities, or one of those moved.
  Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& entities, AcDbObjectId target);
  Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& entities, AcDbObjectId target);
  /// All entities of the block, erased ones too, the first drawn first.
  Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& entities) const;

  /// Places by the handles of entities; one without an entry has its own handle as its place.
  using Places = std::map<Adesk::UInt64, Adesk::UInt64>;
  const Places& places() const;
  Acad::ErrorStatus setPlaces(AcDbObjectId block, Places places);

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  Adesk::UInt64 placeOf(AcDbObjectId entity) const;
  Acad::ErrorStatus move(const AcDbObjectIdArray& entities, AcDbObjectId target, bool above);

  AcDbObjectId block_;
  Places places_;
};
