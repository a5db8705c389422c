// Paths as this system takes them.
#pragma once

#include <string>

namespace tarn::system {

/// The full wide form of a UTF-8 path, '\' between its parts. Longer than the old limit of 260 it
/// is marked as one that has none.
std::wstring widePath(const std::string& path);

}  // namespace tarn::system
