// Shared libraries of the operating system, opened at run time.
#pragma once

#include <string>
#include <string_view>

#include "base/result.h"

namespace tarn {

/// Ending of this system's shared libraries, with its dot.
std::string_view sharedLibraryExtension();

/// Opens the library at `path` and returns the address of `symbol` in it. The library stays mapped
/// until the process ends, also when the symbol is missing; opening it again is the same library.
Result<void*> loadLibrarySymbol(const std::string& path, const char* symbol);

/// Folder of the library or program that holds `address`; empty when it cannot be told.
std::string folderOfCode(const void* address);

}  // namespace tarn
