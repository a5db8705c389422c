// Texts of entities as they are read by a person.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"

namespace tarn::host {

/// A line of text with "%%d", "%%p", "%%c" and "%%123" as their characters, without "%%u" and
/// "%%o".
ACADHOST_EXPORT std::wstring plainLine(std::wstring_view text);

/// The lines of a text of several, without its formatting.
ACADHOST_EXPORT std::vector<std::wstring> plainLines(std::wstring_view contents);

}  // namespace tarn::host
