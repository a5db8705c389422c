// What every entity says beside its layer, colour and visibility, as a value.
#pragma once

#include "dbents.h"

namespace tarn::host {

class EntityAccess {
 public:
  using Properties = AcDbEntity::Properties;
  static const Properties& properties(const AcDbEntity& entity) { return entity.properties_; }
  /// Values out of their bounds become the standard ones. The entity is open for write.
  static void setProperties(AcDbEntity& entity, const Properties& properties) {
    entity.setProperties(properties);
  }
};

}  // namespace tarn::host
