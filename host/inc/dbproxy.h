// Stand-ins for objects whose class is not known.
#pragma once

#include <string>
#include <utility>

#include <vector>

#include "dbents.h"

namespace tarn::host {
class ProxyAccess;
/// What is known of the class of a stand-in, and what was filed of the entity; nothing filed for
/// one that stands in a drawing file.
struct ProxyFacts {
  std::wstring className;
  std::wstring dxfName;
  std::wstring application;
  int flags = 0;
  std::vector<char> filed;
};
}  // namespace tarn::host

/// Stands for an entity whose class is not registered, or is older than what was filed: it has the
/// data that every entity has, and keeps the rest for the class, which gets it back whole when it
/// is there. It draws nothing and cannot be transformed.
class ACADHOST_EXPORT AcDbProxyEntity : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbProxyEntity);
  const ACHAR* originalClassName() const { return facts_.className.c_str(); }
  const ACHAR* originalDxfName() const { return facts_.dxfName.c_str(); }
  const ACHAR* applicationDescription() const { return facts_.application.c_str(); }
  /// What the class allows with its stand-ins; see below.
  int proxyFlags() const { return facts_.flags; }

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
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

 protected:
  /// eNotApplicable unless the class allows it.
  Acad::ErrorStatus subErase(Adesk::Boolean erasing) override;

 private:
  friend class tarn::host::ProxyAccess;
  tarn::host::ProxyFacts facts_;
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
