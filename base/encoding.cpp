#include "base/encoding.h"

#include "base/text.h"

namespace tarn {

std::string percentEncoded(std::string_view path) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string out;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (kPlain.find(c) != std::string_view::npos) {
      out += c;
    } else {
      out += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return out;
}

std::string quotedJson(std::string_view text) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : toUtf8(toWide(text))) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') out += '\\';
    if (byte < ' ') {
      out += "\\u00";
      out += {kDigits[byte >> 4], kDigits[byte & 15]};
    } else {
      out += c;
    }
  }
  return out + '"';
}

}  // namespace tarn
