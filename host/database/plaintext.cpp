#include "host/database/plaintext.h"

namespace tarn::host {

namespace {

bool isDigit(wchar_t c) {
  return c >= L'0' && c <= L'9';
}

}  // namespace

std::wstring plainLine(std::wstring_view text) {
  std::wstring out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != L'%' || i + 2 >= text.size() || text[i + 1] != L'%') {
      out += text[i];
      continue;
    }
    const wchar_t c = text[i + 2];
    const std::wstring_view rest = text.substr(i + 2);
    i += 2;
    switch (c) {
      case L'd':
      case L'D':
        out += L'\u00B0';
        break;
      case L'p':
      case L'P':
        out += L'\u00B1';
        break;
      case L'c':
      case L'C':
        out += L'\u2300';
        break;
      case L'u':
      case L'U':
      case L'o':
      case L'O':
        break;
      case L'%':
        out += L'%';
        break;
      default:
        if (rest.size() >= 3 && isDigit(rest[0]) && isDigit(rest[1]) && isDigit(rest[2])) {
          out += static_cast<wchar_t>((rest[0] - L'0') * 100 + (rest[1] - L'0') * 10 +
                                      (rest[2] - L'0'));
          i += 2;
        } else {
          out += std::wstring(L"%%") + c;
        }
    }
  }
  return out;
}

std::vector<std::wstring> plainLines(std::wstring_view contents) {
  // Formatting with a value that ends at a semicolon.
  constexpr std::wstring_view kWithValue = L"ACFfHpQTWc";
  std::vector<std::wstring> lines(1);
  for (size_t i = 0; i < contents.size(); ++i) {
    const wchar_t c = contents[i];
    if (c == L'{' || c == L'}') continue;
    if (c == L'\n') {
      lines.emplace_back();
      continue;
    }
    if (c != L'\\' || i + 1 >= contents.size()) {
      lines.back() += c == L'\t' ? L' ' : c;
      continue;
    }
    const wchar_t code = contents[++i];
    if (code == L'P' || code == L'N' || code == L'X') {
      lines.emplace_back();
    } else if (code == L'~') {
      lines.back() += L' ';
    } else if (code == L'\\' || code == L'{' || code == L'}') {
      lines.back() += code;
    } else if (code == L'S') {
      const size_t end = contents.find(L';', i);
      for (++i; i < contents.size() && i != end; ++i) {
        lines.back() += contents[i] == L'^' || contents[i] == L'#' ? L'/' : contents[i];
      }
    } else if (kWithValue.find(code) != std::wstring_view::npos) {
      const size_t end = contents.find(L';', i);
      if (end != std::wstring_view::npos) i = end;
    }
  }
  for (std::wstring& line : lines) line = plainLine(line);
  return lines;
}

}  // namespace tarn::host
