// Named objects of the running host.
#pragma once

#include <memory>

#include "rxobject.h"

/// Objects by name, without regard to case. With deletesObjects it owns what is put in.
class ACADHOST_EXPORT AcRxDictionary : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxDictionary);
  explicit AcRxDictionary(bool deletesObjects = false);
  ~AcRxDictionary() override;

  /// Null when there is none.
  AcRxObject* at(const ACHAR* key) const;
  /// Puts the object in, in place of an earlier one, which is returned (or destroyed, and null
  /// returned, when the dictionary owns its objects).
  AcRxObject* atPut(const ACHAR* key, AcRxObject* object);
  /// Takes the object out; the caller owns it.
  AcRxObject* remove(const ACHAR* key);
  bool has(const ACHAR* key) const { return at(key) != nullptr; }
  Adesk::UInt32 numEntries() const;
  /// Entry by position in the order of keys; null past the end.
  AcRxObject* atIndex(Adesk::UInt32 index) const;

 private:
  struct Entries;
  std::unique_ptr<Entries> entries_;
  bool deletesObjects_;
};

/// The registry of the host's own objects: "ClassDictionary", "AcEditor", "DynamicLinker",
/// "LoadedApps" ...
ACADHOST_EXPORT AcRxDictionary* acrxSysRegistry();
ACADHOST_EXPORT AcRxDictionary* acrxClassDictionaryPtr();

#define ACRX_CLASS_DICTIONARY ACRX_T("ClassDictionary")
#define ACRX_DYNAMIC_LINKER ACRX_T("DynamicLinker")
#define acrxClassDictionary (acrxClassDictionaryPtr())
