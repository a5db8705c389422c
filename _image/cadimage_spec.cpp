#include "_image/cadimage_spec.h"

#include <algorithm>
#include <vector>

#include "base/text.h"

namespace tarn::image {
namespace {

constexpr const wchar_t* kSeparator = L"%$#@";
constexpr size_t kSeparatorLength = 4;
constexpr size_t kMostPortDigits = 5;

bool isPort(const std::wstring& text) {
  return !text.empty() && text.size() <= kMostPortDigits &&
         std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

}  // namespace

std::wstring withoutDisplayName(const std::wstring& text) {
  const size_t place = text.rfind(kSeparator);
  return place == std::wstring::npos ? text : text.substr(place + kSeparatorLength);
}

std::optional<ServerImage> parseServerImage(const std::wstring& text) {
  const std::wstring named = withoutDisplayName(text);
  const size_t slash = named.find(L'/');
  if (slash == std::wstring::npos || slash + 1 == named.size()) return std::nullopt;
  const std::vector<std::wstring> server = split(std::wstring_view(named).substr(0, slash), L':');
  if (server[0].empty() || server[0].find(L'\\') != std::wstring::npos || server.size() > 2) {
    return std::nullopt;
  }
  const bool hasDisplayName = named.size() != text.size();
  if (server.size() == 2 ? !isPort(server[1]) : !hasDisplayName) return std::nullopt;
  return ServerImage{server[0], server.size() == 2 ? server[1] : std::wstring(),
                     replaceAll(named.substr(slash + 1), L":", L"/")};
}

}  // namespace tarn::image
