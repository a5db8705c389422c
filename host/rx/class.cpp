#include <string>
#include <utility>

#include "base/text.h"
#include "host/rx/classwatch.h"
#include "host/rx/rxinit.h"
#include "rxclass.h"
#include "rxdict.h"
#include "rxdlinkr.h"
#include "rxobject.h"
#include "rxregsvc.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxClass, AcRxObject)

AcRxClass* AcRxObject::gpDesc = nullptr;

AcRxObject::~AcRxObject() = default;
AcRxClass* AcRxObject::desc() {
  return gpDesc;
}
AcRxClass* AcRxObject::isA() const {
  return desc();
}
AcRxObject* AcRxObject::clone() const {
  return nullptr;
}
Acad::ErrorStatus AcRxObject::copyFrom(const AcRxObject*) {
  return Acad::eNotApplicable;
}
bool AcRxObject::isEqualTo(const AcRxObject* other) const {
  return this == other;
}

void AcRxObject::rxInit() {
  gpDesc = acrxRegisterClassOnce(gpDesc, ACRX_T("AcRxObject"), nullptr, 0, 0, 0, nullptr, nullptr,
                                 nullptr, nullptr);
}

bool AcRxObject::isKindOf(const AcRxClass* cls) const {
  return isA()->isDerivedFrom(cls);
}

AcRxClass::AcRxClass(Data data) : data_(std::move(data)) {
  resolveParent();
}

const ACHAR* AcRxClass::dxfName() const {
  return data_.dxfName.empty() ? nullptr : data_.dxfName.c_str();
}

const ACHAR* AcRxClass::appName() const {
  return data_.appName.empty() ? nullptr : data_.appName.c_str();
}

Acad::ErrorStatus AcRxClass::getClassVersion(int& dwgVersion, int& maintenanceVersion) const {
  dwgVersion = data_.dwgVersion;
  maintenanceVersion = data_.maintenanceVersion;
  return Acad::eOk;
}

bool AcRxClass::isDerivedFrom(const AcRxClass* other) const {
  for (const AcRxClass* cls = this; cls != nullptr; cls = cls->parent_) {
    if (cls == other) return true;
  }
  return false;
}

void AcRxClass::resolveParent() {
  if (parent_ != nullptr || data_.parentName.empty()) return;
  parent_ = static_cast<AcRxClass*>(acrxClassDictionary->at(data_.parentName.c_str()));
}

namespace {

std::wstring textOf(const ACHAR* text) {
  return text == nullptr ? std::wstring() : text;
}

bool sameDescription(const AcRxClass::Data& a, const AcRxClass::Data& b) {
  return a.parentName == b.parentName && a.dxfName == b.dxfName && a.appName == b.appName &&
         a.dwgVersion == b.dwgVersion && a.maintenanceVersion == b.maintenanceVersion &&
         a.proxyFlags == b.proxyFlags && a.constructor == b.constructor;
}

void forEachClass(void (*work)(AcRxClass*)) {
  for (Adesk::UInt32 i = 0; i < acrxClassDictionary->numEntries(); ++i) {
    work(static_cast<AcRxClass*>(acrxClassDictionary->atIndex(i)));
  }
}

}  // namespace

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentName, int dwgVersion,
                        int maintenanceVersion, int proxyFlags, AcRxObject* (*constructor)(),
                        const ACHAR* dxfName, const ACHAR* appName,
                        AppNameChangeFuncPtr appNameChange) {
  AcRxClass::Data data;
  data.name = textOf(className);
  data.parentName = textOf(parentName);
  data.dxfName = textOf(dxfName);
  data.appName = textOf(appName);
  data.dwgVersion = dwgVersion;
  data.maintenanceVersion = maintenanceVersion;
  data.proxyFlags = proxyFlags;
  data.constructor = constructor;
  data.appNameChange = appNameChange;
  if (auto* known = static_cast<AcRxClass*>(acrxClassDictionary->at(className))) {
    if (!sameDescription(known->data(), data)) acrx_abort(ACRX_T("Class mismatch"));
    return known;
  }
  auto* cls = new AcRxClass(std::move(data));
  acrxClassDictionary->atPut(className, cls);
  return cls;
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentName, int proxyFlags,
                        AcRxObject* (*constructor)(), const ACHAR* dxfName, const ACHAR* appName) {
  return newAcRxClass(className, parentName, 0, 0, proxyFlags, constructor, dxfName, appName,
                      nullptr);
}

AcRxClass* acrxRegisterClassOnce(AcRxClass* own, const ACHAR* className, const ACHAR* parentName,
                                 int dwgVersion, int maintenanceVersion, int proxyFlags,
                                 AcRxObject* (*constructor)(), const ACHAR* dxfName,
                                 const ACHAR* appName, AppNameChangeFuncPtr appNameChange) {
  AcRxObject* const known = acrxClassDictionary->at(className);
  if (known == nullptr) {
    return newAcRxClass(className, parentName, dwgVersion, maintenanceVersion, proxyFlags,
                        constructor, dxfName, appName, appNameChange);
  }
  if (known != own) acrx_abort(ACRX_T("Class mismatch"));
  return own;
}

void deleteAcRxClass(AcRxClass* cls) {
  if (cls == nullptr) return;
  if (acrxClassDictionary->at(cls->name()) == cls) acrxClassDictionary->remove(cls->name());
  delete cls;
}

namespace {

std::function<void()>& classWatch() {
  static std::function<void()> watch;
  return watch;
}

}  // namespace

void acrxBuildClassHierarchy() {
  forEachClass([](AcRxClass* cls) { cls->resolveParent(); });
  if (classWatch()) classWatch()();
}

namespace tarn::host {

void setClassWatch(std::function<void()> watch) {
  classWatch() = std::move(watch);
}

void registerRxClasses() {
  AcRxObject::rxInit();
  AcRxClass::rxInit();
  AcRxDictionary::rxInit();
  AcRxDynamicLinker::rxInit();
}

namespace {

[[maybe_unused]] const bool kRegistered = [] {
  registerRxClasses();
  acrxSysRegistry()->atPut(ACRX_DYNAMIC_LINKER, acrxDynamicLinkerPtr());
  return true;
}();

}  // namespace

}  // namespace tarn::host
