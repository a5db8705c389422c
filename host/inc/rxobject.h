// The root of the host's classes and the macros that give a class its run-time description.
#pragma once

#include "acdb.h"
#include "adesk.h"

class AcRxClass;
class AcRxObject;

/// May change the application name stored with a class in a drawing; `newAppName` is made with
/// acutNewString.
using AppNameChangeFuncPtr = void (*)(const AcRxClass* cls, ACHAR*& newAppName, int saveVersion);

class ACADHOST_EXPORT AcRxObject {
 public:
  AcRxObject() = default;
  AcRxObject(const AcRxObject&) = delete;
  AcRxObject& operator=(const AcRxObject&) = delete;
  virtual ~AcRxObject();

  static AcRxClass* gpDesc;
  static AcRxClass* desc();
  static AcRxObject* cast(const AcRxObject* object) { return const_cast<AcRxObject*>(object); }
  static void rxInit();

  virtual AcRxClass* isA() const;
  /// True when this object's class is `cls` or derived from it.
  bool isKindOf(const AcRxClass* cls) const;

  /// A new object that the caller owns; null when the class cannot be copied.
  virtual AcRxObject* clone() const;
  virtual Acad::ErrorStatus copyFrom(const AcRxObject* other);
  virtual bool isEqualTo(const AcRxObject* other) const;
};

/// In the public part of a class: isA(), desc(), cast(), gpDesc and both forms of rxInit().
#define ACRX_DECLARE_MEMBERS(CLASS_NAME)                                   \
  AcRxClass* isA() const override;                                         \
  static AcRxClass* gpDesc;                                                \
  static AcRxClass* desc();                                                \
  static CLASS_NAME* cast(const AcRxObject* object) {                      \
    return object != nullptr && object->isKindOf(CLASS_NAME::desc())       \
               ? static_cast<CLASS_NAME*>(const_cast<AcRxObject*>(object)) \
               : nullptr;                                                  \
  }                                                                        \
  static void rxInit();                                                    \
  static void rxInit(AppNameChangeFuncPtr appNameChange)

/// Registers a class that is not known yet. A class of that name that is not `own` aborts with
/// "Class mismatch". Returns the description.
ACADHOST_EXPORT AcRxClass* acrxRegisterClassOnce(AcRxClass* own, const ACHAR* className,
                                                 const ACHAR* parentName, int dwgVersion,
                                                 int maintenanceVersion, int proxyFlags,
                                                 AcRxObject* (*constructor)(), const ACHAR* dxfName,
                                                 const ACHAR* appName,
                                                 AppNameChangeFuncPtr appNameChange);

#define ACRX_DEFINE_BODY_(CLASS_NAME, PARENT, DWG, MAINT, PROXY, MAKER, DXF, APP)            \
  AcRxClass* CLASS_NAME::gpDesc = nullptr;                                                   \
  AcRxClass* CLASS_NAME::desc() {                                                            \
    return CLASS_NAME::gpDesc;                                                               \
  }                                                                                          \
  AcRxClass* CLASS_NAME::isA() const {                                                       \
    return CLASS_NAME::desc();                                                               \
  }                                                                                          \
  void CLASS_NAME::rxInit() {                                                                \
    CLASS_NAME::rxInit(nullptr);                                                             \
  }                                                                                          \
  void CLASS_NAME::rxInit(AppNameChangeFuncPtr appNameChange) {                              \
    CLASS_NAME::gpDesc =                                                                     \
        acrxRegisterClassOnce(CLASS_NAME::gpDesc, ACRX_T(#CLASS_NAME), ACRX_T(#PARENT), DWG, \
                              MAINT, PROXY, MAKER, DXF, APP, appNameChange);                 \
  }

#define ACRX_MAKER_(CLASS_NAME) []() -> AcRxObject* { return new CLASS_NAME; }

/// A class that cannot be made by name.
#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT) \
  ACRX_DEFINE_BODY_(CLASS_NAME, PARENT, 0, 0, 0, nullptr, nullptr, nullptr)

/// A class with a pseudo-constructor that is not stored in drawings.
#define ACRX_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT, VERNO) \
  ACRX_DEFINE_BODY_(CLASS_NAME, PARENT, 0, 0, 0, ACRX_MAKER_(CLASS_NAME), nullptr, nullptr)

/// A class stored in drawings. DXF_NAME and APP are written without quotes; white space in APP,
/// line ends too, becomes single blanks.
#define ACRX_DXF_DEFINE_MEMBERS(CLASS_NAME, PARENT, DWG_VERSION, MAINT_VERSION, PROXY_FLAGS, \
                                DXF_NAME, APP)                                               \
  ACRX_DEFINE_BODY_(CLASS_NAME, PARENT, DWG_VERSION, MAINT_VERSION, PROXY_FLAGS,             \
                    ACRX_MAKER_(CLASS_NAME), ACRX_T(#DXF_NAME), ACRX_T(#APP))
