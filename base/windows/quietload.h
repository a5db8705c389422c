// Loading a library without a word of the system's own.
#pragma once

#include <string>

#include "base/result.h"

namespace tarn::system {

/// The library at a full path ('\\' between its parts), as the system's handle. What it needs may
/// stand beside it or beside the program, never in the working folder. The error is the reason
/// alone, without the path; no box of the system's tells it.
Result<void*> loadQuietly(const std::wstring& path);

}  // namespace tarn::system
