// Copies of entities through the filer, within a drawing and into another one.
#pragma once

#include <map>

#include "adesk.h"
#include "dbid.h"

class AcDbDatabase;
class AcDbEntity;
class AcDbObject;

namespace tarn::host {

/// Layers, blocks and whatever else of the symbol tables a copy names is looked up by its name in
/// the target drawing and copied there when it is missing.
class ACADHOST_EXPORT DeepCloner {
 public:
  explicit DeepCloner(AcDbDatabase& target) : target_(target) {}

  /// From now on copies that come into a drawing get copies of the extension dictionaries of what
  /// they were made from, with all that these own.
  static void install();

  /// A new entity that belongs to the caller; null for a class that cannot be made or read.
  AcDbEntity* clone(const AcDbEntity& entity);
  /// What an id of another drawing is in the target; null when there is nothing like it.
  AcDbObjectId translate(AcDbObjectId id);

 private:
  AcDbObject* copyOf(const AcDbObject& object);
  AcDbObjectId translateRecord(const AcDbObject& record);
  AcDbObjectId copyOwned(AcDbObjectId id, AcDbObjectId owner);
  void copyEntries(const AcDbObject& from, AcDbObjectId to);
  static void completeCopy(AcDbObject& copy);
  AcDbObjectId copyRecord(const AcDbObject& record, AcDbObjectId tableId);
  void copyBlockEntities(const AcDbObject& from, AcDbObjectId to);

  AcDbDatabase& target_;
  std::map<AcDbObjectId, AcDbObjectId> known_;
};

}  // namespace tarn::host
