// Stand-ins for entities whose class is not known.
#pragma once

#include "dbents.h"

/// Carries what was filed for an entity of an unknown class.
class ACADHOST_EXPORT AcDbProxyEntity : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbProxyEntity);
  /// What a user may do with the stand-in.
  enum {
    kNoOperation = 0,
    kEraseAllowed = 0x1,
    kTransformAllowed = 0x2,
    kColorChangeAllowed = 0x4,
    kLayerChangeAllowed = 0x8,
    kLinetypeChangeAllowed = 0x10,
    kLinetypeScaleChangeAllowed = 0x20,
    kVisibilityChangeAllowed = 0x40,
    kAllAllowedBits = 0x7F,
  };
};
