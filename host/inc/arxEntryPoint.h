// Base application classes of a module and the macros that register its commands and classes.
// Compiled into each module; the lists here are private to it.
#pragma once

#include "accmd.h"
#include "rxclass.h"
#include "rxobject.h"
#include "rxregsvc.h"

namespace arxentry {

/// One line of the module's static command table.
struct CommandEntry {
  const ACHAR* group;
  const ACHAR* globalName;
  const ACHAR* localName;
  Adesk::Int32 flags;
  AcRxFunctionPtr function;
  AcEdUIContext* uiContext;
  CommandEntry* next;
};

/// One run-time class that is registered when the module starts.
struct ClassEntry {
  void (*rxInit)();
  ClassEntry* next;
};

template <typename Entry>
struct EntryList {
  Entry* first = nullptr;
  Entry* last = nullptr;
  bool append(Entry& entry) {
    (last == nullptr ? first : last->next) = &entry;
    last = &entry;
    return true;
  }
};

ACRX_MODULE_LOCAL inline EntryList<CommandEntry>& commandEntries() {
  static EntryList<CommandEntry> entries;
  return entries;
}

ACRX_MODULE_LOCAL inline EntryList<ClassEntry>& classEntries() {
  static EntryList<ClassEntry> entries;
  return entries;
}

}  // namespace arxentry

/// Receives the host's messages: code k from 1 to 15 goes to the handler in slot k - 1, code 0 to
/// slot 15. Handlers stand in the order of the codes; the destructor is last, so that it takes none
/// of their slots.
class ACRX_MODULE_LOCAL AcRxDbxApp {
 public:
  AcRxDbxApp() = default;
  AcRxDbxApp(const AcRxDbxApp&) = delete;
  AcRxDbxApp& operator=(const AcRxDbxApp&) = delete;

  virtual AcRx::AppRetCode On_kInitAppMsg(void* packet) {
    acrxUnlockApplication(packet);
    acrxRegisterAppMDIAware(packet);
    for (auto* entry = arxentry::classEntries().first; entry != nullptr; entry = entry->next) {
      entry->rxInit();
    }
    acrxBuildClassHierarchy();
    return AcRx::kRetOK;
  }
  /// Deliberate: the run-time classes stay registered, since open drawings may hold their objects.
  virtual AcRx::AppRetCode On_kUnloadAppMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kLoadDwgMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kUnloadDwgMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kInvkSubrMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kCfgMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kEndMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kQuitMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kSaveMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kDependencyMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kNoDependencyMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kOleUnloadAppMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kPreQuitMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kInitDialogMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kEndDialogMsg(void*) { return AcRx::kRetOK; }
  virtual AcRx::AppRetCode On_kNullMsg(void*) { return AcRx::kRetOK; }
  virtual void RegisterServerComponents() {}
  virtual ~AcRxDbxApp() = default;

  /// The dispatcher. Codes outside 0 to 15 reach no handler.
  AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    using Handler = AcRx::AppRetCode (AcRxDbxApp::*)(void*);
    static const Handler kHandlers[] = {
        &AcRxDbxApp::On_kNullMsg,         &AcRxDbxApp::On_kInitAppMsg,
        &AcRxDbxApp::On_kUnloadAppMsg,    &AcRxDbxApp::On_kLoadDwgMsg,
        &AcRxDbxApp::On_kUnloadDwgMsg,    &AcRxDbxApp::On_kInvkSubrMsg,
        &AcRxDbxApp::On_kCfgMsg,          &AcRxDbxApp::On_kEndMsg,
        &AcRxDbxApp::On_kQuitMsg,         &AcRxDbxApp::On_kSaveMsg,
        &AcRxDbxApp::On_kDependencyMsg,   &AcRxDbxApp::On_kNoDependencyMsg,
        &AcRxDbxApp::On_kOleUnloadAppMsg, &AcRxDbxApp::On_kPreQuitMsg,
        &AcRxDbxApp::On_kInitDialogMsg,   &AcRxDbxApp::On_kEndDialogMsg};
    const int code = message;
    if (code < AcRx::kNullMsg || code > AcRx::kEndDialogMsg) return AcRx::kRetOK;
    return (this->*kHandlers[code])(packet);
  }
};

/// Adds the static command table: registered at init, its groups removed at unload.
class ACRX_MODULE_LOCAL AcRxArxApp : public AcRxDbxApp {
 public:
  AcRx::AppRetCode On_kInitAppMsg(void* packet) override {
    const AcRx::AppRetCode status = AcRxDbxApp::On_kInitAppMsg(packet);
    if (status != AcRx::kRetOK) return status;
    for (auto* entry = arxentry::commandEntries().first; entry != nullptr; entry = entry->next) {
      acedRegCmds->addCommand(entry->group, entry->globalName, entry->localName, entry->flags,
                              entry->function, entry->uiContext);
    }
    return status;
  }
  AcRx::AppRetCode On_kUnloadAppMsg(void* packet) override {
    for (auto* entry = arxentry::commandEntries().first; entry != nullptr; entry = entry->next) {
      acedRegCmds->removeGroup(entry->group);
    }
    return AcRxDbxApp::On_kUnloadAppMsg(packet);
  }
};

#define ARXENTRY_JOIN2_(a, b) a##b
#define ARXENTRY_JOIN_(a, b) ARXENTRY_JOIN2_(a, b)

/// A line of the static command table, at namespace scope, after the class. Names are written
/// without quotes; the handler is the public static member `group` `globalName` joined:
///   ACED_ARXCOMMAND_ENTRY_AUTO(CApp, _grp, _Draw, Draw, ACRX_CMD_TRANSPARENT, nullptr)
/// calls CApp::_grp_Draw().
#define ACED_ARXCOMMAND_ENTRY_AUTO(classname, group, globalName, localName, flags, UIContext) \
  static arxentry::CommandEntry arxCommand_##classname##group##globalName = {                 \
      ACRX_T(#group), ACRX_T(#globalName),           ACRX_T(#localName),                      \
      (flags),        &classname::group##globalName, (UIContext),                             \
      nullptr};                                                                               \
  [[maybe_unused]] static const bool arxCommandAdded_##classname##group##globalName =         \
      arxentry::commandEntries().append(arxCommand_##classname##group##globalName);

/// A run-time class of the module, registered by the base application class at init.
#define ACDB_REGISTER_OBJECT_ENTRY_AUTO(classname)                                           \
  static arxentry::ClassEntry arxClass_##classname = {[] { classname::rxInit(); }, nullptr}; \
  [[maybe_unused]] static const bool arxClassAdded_##classname =                             \
      arxentry::classEntries().append(arxClass_##classname);

/// The module's application object and its two exported functions.
#define IMPLEMENT_ARX_ENTRYPOINT(classname)                                               \
  static classname arxApplication;                                                        \
  extern "C" ACRX_MODULE_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, \
                                                                void* packet) {           \
    return arxApplication.acrxEntryPoint(message, packet);                                \
  }                                                                                       \
  extern "C" ACRX_MODULE_EXPORT int acrxGetApiVersion() {                                 \
    return ACRX_API_VERSION;                                                              \
  }
