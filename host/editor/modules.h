// Loading of application modules.
#pragma once

#include <string>

#include "adesk.h"
#include "base/result.h"

namespace tarn::host {

/// Loads an application module and sends it its first message. Fine when it is loaded already.
ACADHOST_EXPORT Status loadModule(const std::string& path);

/// Sends a loaded module its last message. Fine when it is not loaded.
ACADHOST_EXPORT void unloadModule(const std::string& path);

}  // namespace tarn::host
