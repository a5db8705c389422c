// Loading and unloading of application modules.
#pragma once

#include <string>
#include <vector>

#include "rxdict.h"
#include "rxobject.h"
#include "rxregsvc.h"

/// One message to a module is one call of its acrxEntryPoint with a packet that names the module.
class ACADHOST_EXPORT AcRxDynamicLinker : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxDynamicLinker);

  /// Loads a module and sends it kInitAppMsg. True when it is loaded now, also when it was before.
  /// A failure is told on the command line when `printit`.
  bool loadModule(const ACHAR* fileName, bool printit, bool asCmd = false);
  /// Sends kUnloadAppMsg. A module that is locked or answers kRetError stays. Its library stays in
  /// memory, so that nothing it left behind points into nothing.
  bool unloadModule(const ACHAR* fileName, bool asCmd = false);
  /// By file name without regard to folder and case.
  bool isModuleLoaded(const ACHAR* fileName) const;
  /// File names of the loaded modules in the order of loading.
  std::vector<std::wstring> loadedModules() const;
  /// Why the last load or unload was refused, as one sentence; empty after success.
  const ACHAR* lastMessage() const;
  /// Sends a message to each loaded module in the order of loading.
  void sendToAll(AcRx::AppMsgCode message);
};

ACADHOST_EXPORT AcRxDynamicLinker* acrxDynamicLinkerPtr();
#define acrxDynamicLinker (acrxDynamicLinkerPtr())
