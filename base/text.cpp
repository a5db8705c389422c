#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace tarn {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isScalar(char32_t c) {
  return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Wide characters are UTF-32 where wchar_t has four bytes and UTF-16 where it has two.
void appendWide(std::wstring& out, char32_t c) {
  if (sizeof(wchar_t) == 2 && c > 0xFFFF) {
    out += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
    out += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
  } else {
    out += static_cast<wchar_t>(c);
  }
}

template <typename View>
char32_t nextCodePoint(View text, size_t& i) {
  const auto unit = static_cast<char32_t>(text[i++]);
  if (unit >= 0xD800 && unit <= 0xDBFF && i < text.size()) {
    const auto low = static_cast<char32_t>(text[i]);
    if (low >= 0xDC00 && low <= 0xDFFF) {
      ++i;
      return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
  }
  return isScalar(unit) ? unit : kReplacement;
}

char32_t nextUtf8(std::string_view s, size_t& i) {
  const auto lead = static_cast<uint8_t>(s[i++]);
  if (lead < 0x80) return lead;
  const int extra = lead >= 0xF0 && lead < 0xF5   ? 3
                    : lead >= 0xE0 && lead < 0xF0 ? 2
                    : lead >= 0xC2 && lead < 0xE0 ? 1
                                                  : 0;
  if (extra == 0) return kReplacement;
  char32_t c = lead & (0x3F >> extra);
  size_t j = i;
  for (int k = 0; k < extra; ++k, ++j) {
    if (j >= s.size() || (static_cast<uint8_t>(s[j]) & 0xC0) != 0x80) return kReplacement;
    c = (c << 6) | (static_cast<uint8_t>(s[j]) & 0x3F);
  }
  const char32_t least = extra == 1 ? 0x80 : extra == 2 ? 0x800 : 0x10000;
  if (c < least || !isScalar(c)) return kReplacement;
  i = j;
  return c;
}

template <typename Char>
Char lower(Char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<Char>(c - 'A' + 'a') : c;
}

template <typename Char>
bool equalFolded(std::basic_string_view<Char> a, std::basic_string_view<Char> b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](Char x, Char y) { return lower(x) == lower(y); });
}

template <typename Char>
std::basic_string<Char> lowered(std::basic_string_view<Char> text) {
  std::basic_string<Char> out(text);
  std::transform(out.begin(), out.end(), out.begin(), lower<Char>);
  return out;
}

template <typename Char>
std::vector<std::basic_string<Char>> pieces(std::basic_string_view<Char> text, Char separator) {
  std::vector<std::basic_string<Char>> out;
  for (;;) {
    const size_t at = text.find(separator);
    out.emplace_back(text.substr(0, at));
    if (at == text.npos) return out;
    text.remove_prefix(at + 1);
  }
}

template <typename Char>
std::basic_string_view<Char> trimmed(std::basic_string_view<Char> text) {
  const auto blank = [](Char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

template <typename Char>
std::basic_string<Char> replaced(std::basic_string<Char> text, std::basic_string_view<Char> from,
                                 std::basic_string_view<Char> to) {
  if (from.empty()) return text;
  for (size_t at = text.find(from); at != text.npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

template <typename Number>
bool parseNumber(std::string_view text, Number& value) {
  text = trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  Number parsed{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return false;
  value = parsed;
  return true;
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) appendUtf8(out, nextCodePoint(text, i));
  return out;
}

std::wstring toWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) appendWide(out, nextUtf8(utf8, i));
  return out;
}

std::u16string toUtf16(std::wstring_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const char32_t c = nextCodePoint(text, i);
    if (c > 0xFFFF) {
      out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      out += static_cast<char16_t>(c);
    }
  }
  return out;
}

std::wstring fromUtf16(std::u16string_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) appendWide(out, nextCodePoint(text, i));
  return out;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
  return equalFolded(a, b);
}
bool equalsIgnoreCase(std::wstring_view a, std::wstring_view b) {
  return equalFolded(a, b);
}

std::string toLower(std::string_view text) {
  return lowered(text);
}
std::wstring toLower(std::wstring_view text) {
  return lowered(text);
}

std::vector<std::string> split(std::string_view text, char separator) {
  return pieces(text, separator);
}
std::vector<std::wstring> split(std::wstring_view text, wchar_t separator) {
  return pieces(text, separator);
}

std::string_view trim(std::string_view text) {
  return trimmed(text);
}
std::wstring_view trim(std::wstring_view text) {
  return trimmed(text);
}

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
  return replaced(std::move(text), from, to);
}
std::wstring replaceAll(std::wstring text, std::wstring_view from, std::wstring_view to) {
  return replaced(std::move(text), from, to);
}

std::string formatDouble(double value) {
  char buffer[40];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

bool parseDouble(std::string_view text, double& value) {
  double parsed = 0;
  if (!parseNumber(text, parsed) || !std::isfinite(parsed)) return false;
  value = parsed;
  return true;
}

bool parseInt(std::string_view text, int& value) {
  return parseNumber(text, value);
}

}  // namespace tarn
