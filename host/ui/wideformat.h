// Wide printf formats of the public interface.
#pragma once

#include <cstdarg>
#include <string>

#include "adesk.h"

namespace tarn::host {

/// Formats with ACHAR rules: %s and %c take wide texts and characters, %hs and %S narrow ones (the
/// C library has it the other way round). A format that cannot be carried out gives what was
/// formatted until there.
ACADHOST_EXPORT std::wstring formatWide(const ACHAR* format, va_list arguments);

}  // namespace tarn::host
