// Shared libraries of the operating system.
#pragma once

#include <string>

#include "base/result.h"

namespace tarn::host {

/// Maps a library for the rest of the process. The failure is the reason alone, without the path.
Result<void*> openLibrary(const std::string& path);

/// Null when the library itself does not have the symbol.
void* findSymbol(void* library, const char* name);

}  // namespace tarn::host
