// Stand-ins for objects whose class is not known.
#pragma once

#include <string>
#include <utility>

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

/// Stands for an object of a drawing file that no class here is made for, so that dictionaries can
/// name it. What it holds stays in the file.
class ACADHOST_EXPORT AcDbProxyObject : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbProxyObject);
  explicit AcDbProxyObject(std::wstring dxfName = {}) : dxfName_(std::move(dxfName)) {}
  /// The kind of the object in drawing files.
  const ACHAR* originalDxfName() const { return dxfName_.c_str(); }

 private:
  std::wstring dxfName_;
};
