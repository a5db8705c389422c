// Run-time class descriptions.
#pragma once

#include <string>

#include "rxobject.h"

/// One class: its name, its parent and what drawings store about it. Owned by the class dictionary.
class ACADHOST_EXPORT AcRxClass : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxClass);
  struct Data {
    std::wstring name, parentName, dxfName, appName;
    int dwgVersion = 0, maintenanceVersion = 0, proxyFlags = 0;
    AcRxObject* (*constructor)() = nullptr;
    AppNameChangeFuncPtr appNameChange = nullptr;
  };
  explicit AcRxClass(Data data);

  const ACHAR* name() const { return data_.name.c_str(); }
  /// Null when the class has none.
  const ACHAR* dxfName() const;
  const ACHAR* appName() const;
  int proxyFlags() const { return data_.proxyFlags; }
  Acad::ErrorStatus getClassVersion(int& dwgVersion, int& maintenanceVersion) const;
  AcRxClass* myParent() const { return parent_; }
  bool isDerivedFrom(const AcRxClass* other) const;
  /// A new default object that the caller owns, or null without a pseudo-constructor.
  AcRxObject* create() const { return data_.constructor ? data_.constructor() : nullptr; }
  AppNameChangeFuncPtr appNameCallbackPtr() const { return data_.appNameChange; }

  /// Finds the parent by name when it was not registered yet.
  void resolveParent();
  const Data& data() const { return data_; }

 private:
  Data data_;
  AcRxClass* parent_ = nullptr;
};

/// Enters a class into the class dictionary, which owns it. The same description again gives the
/// class that is there; another one under a taken name aborts with "Class mismatch".
ACADHOST_EXPORT AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentName,
                                        int proxyFlags = 0, AcRxObject* (*constructor)() = nullptr,
                                        const ACHAR* dxfName = nullptr,
                                        const ACHAR* appName = nullptr);
ACADHOST_EXPORT AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentName,
                                        int dwgVersion, int maintenanceVersion, int proxyFlags,
                                        AcRxObject* (*constructor)(), const ACHAR* dxfName,
                                        const ACHAR* appName,
                                        AppNameChangeFuncPtr appNameChange = nullptr);

/// Takes a class out of the class dictionary and destroys it. No object of it may be left.
ACADHOST_EXPORT void deleteAcRxClass(AcRxClass* cls);

/// Connects classes whose parent was registered after them.
ACADHOST_EXPORT void acrxBuildClassHierarchy();
