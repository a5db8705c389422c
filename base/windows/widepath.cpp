#include "base/windows/widepath.h"

#include <windows.h>

#include "base/text.h"

namespace tarn::system {

std::wstring widePath(const std::string& path) {
  // The limit for folders is 12 less than that for files.
  constexpr size_t kShort = 247;
  const std::wstring given = toWide(path.empty() ? "." : path);
  std::wstring full(given.size() + MAX_PATH, L'\0');
  DWORD length = 0;
  for (int i = 0; i < 2; ++i) {
    length =
        ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length < full.size()) break;
    full.resize(length);
  }
  if (length == 0 || length >= full.size()) return given;
  full.resize(length);
  if (full.size() < kShort || full.compare(0, 4, L"\\\\?\\") == 0) return full;
  return full.compare(0, 2, L"\\\\") == 0 ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

}  // namespace tarn::system
