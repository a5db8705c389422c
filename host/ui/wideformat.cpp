#include "host/ui/wideformat.h"

#include <cwchar>
#include <vector>

namespace tarn::host {

namespace {

constexpr size_t kLargestText = size_t{1} << 22;

/// The format with the C library's length letters: %s becomes %ls, %S and %hs become %s.
std::wstring libraryFormat(const std::wstring& format) {
  std::wstring out;
  for (size_t i = 0; i < format.size(); ++i) {
    out += format[i];
    if (format[i] != L'%') continue;
    size_t end = i + 1;
    while (end < format.size() && std::wcschr(L"-+ #0123456789.*", format[end]) != nullptr) ++end;
    size_t type = end;
    while (type < format.size() && std::wcschr(L"hlLqjzt", format[type]) != nullptr) ++type;
    if (type >= format.size()) continue;
    out += format.substr(i + 1, end - i - 1);
    std::wstring length = format.substr(end, type - end);
    wchar_t letter = format[type];
    if (letter == L's' || letter == L'c') length = length == L"h" ? L"" : L"l";
    if (letter == L'S' || letter == L'C') {
      length.clear();
      letter = letter == L'S' ? L's' : L'c';
    }
    out += length + letter;
    i = type;
  }
  return out;
}

}  // namespace

std::wstring formatWide(const ACHAR* format, va_list arguments) {
  if (format == nullptr) return {};
  const std::wstring rule = libraryFormat(format);
  std::vector<wchar_t> buffer(1024);
  for (;;) {
    va_list copy;
    va_copy(copy, arguments);
    // The analyser does not see va_copy.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int count = std::vswprintf(buffer.data(), buffer.size(), rule.c_str(), copy);
    va_end(copy);
    if (count >= 0) return {buffer.data(), static_cast<size_t>(count)};
    if (buffer.size() >= kLargestText) return {buffer.data()};
    buffer.assign(buffer.size() * 4, 0);
  }
}

}  // namespace tarn::host
