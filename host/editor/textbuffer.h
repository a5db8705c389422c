// Texts into the fixed buffers of the function interface.
#pragma once

#include <cstddef>
#include <string>

#include "adesk.h"

namespace tarn::host {

/// Copies with the terminator. When it does not fit, as much as does is copied and false returned.
inline bool copyText(const std::wstring& text, ACHAR* out, size_t capacity) {
  if (capacity == 0) return false;
  const size_t count = text.copy(out, capacity - 1);
  out[count] = 0;
  return count == text.size();
}

}  // namespace tarn::host
