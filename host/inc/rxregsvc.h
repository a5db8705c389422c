// Services for application modules: messages they receive, unlocking, abort.
#pragma once

#include "rxobject.h"

/// Version stamp of this interface: a module gives it back from acrxGetApiVersion(). The host loads
/// modules of its own main version that are not newer than itself.
#define ACRX_API_VERSION ((23 << 16) | 1)

namespace AcRx {

enum AppMsgCode : int {
  kNullMsg = 0,
  kInitAppMsg = 1,
  kUnloadAppMsg = 2,
  kLoadDwgMsg = 3,
  kUnloadDwgMsg = 4,
  kInvkSubrMsg = 5,
  kCfgMsg = 6,
  kEndMsg = 7,
  kQuitMsg = 8,
  kSaveMsg = 9,
  kDependencyMsg = 10,
  kNoDependencyMsg = 11,
  kOleUnloadAppMsg = 12,
  kPreQuitMsg = 13,
  kInitDialogMsg = 14,
  kEndDialogMsg = 15,
};

enum AppRetCode : int { kRetOK = 0, kRetError = 3 };

}  // namespace AcRx

/// Allows (or, locking, refuses) that the module of this message packet is unloaded.
ACADHOST_EXPORT bool acrxUnlockApplication(void* packet);
ACADHOST_EXPORT bool acrxLockApplication(void* packet);
/// Says that the module keeps its state by document.
ACADHOST_EXPORT bool acrxRegisterAppMDIAware(void* packet);

/// Ends the program after printing the text.
[[noreturn]] ACADHOST_EXPORT void acrx_abort(const ACHAR* text);
[[noreturn]] ACADHOST_EXPORT void acrxAbort(const ACHAR* text);
