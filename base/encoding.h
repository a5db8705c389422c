// Text inside other forms: addresses and JSON.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// With every byte percent-encoded that is no letter, digit or one of "-._~/".
std::string percentEncoded(std::string_view path);

/// A text as a JSON string, its quotes included; bytes that are no UTF-8 become U+FFFD.
std::string quotedJson(std::string_view text);

}  // namespace tarn
