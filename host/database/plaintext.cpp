#include "host/database/plaintext.h"

#include <cwctype>

#include "dbsymtb.h"
#include "host/database/objectaccess.h"

namespace tarn::host {

namespace {

constexpr size_t kUnicodeLength = 7;  ///< "\U+1234"

bool isDigit(wchar_t c) {
  return c >= L'0' && c <= L'9';
}

/// The character of a "\U+1234" at the beginning; 0 for none.
wchar_t unicodeAt(std::wstring_view text) {
  if (text.size() < kUnicodeLength || text.substr(0, 3) != L"\\U+") return 0;
  unsigned value = 0;
  for (const wchar_t c : text.substr(3, 4)) {
    if (std::iswxdigit(static_cast<wint_t>(c)) == 0) return 0;
    const unsigned digit =
        isDigit(c) ? static_cast<unsigned>(c - L'0')
                   : static_cast<unsigned>(std::towlower(static_cast<wint_t>(c)) - L'a' + 10);
    value = value * 16 + digit;
  }
  return static_cast<wchar_t>(value);
}

wchar_t signOf(wchar_t code) {
  switch (std::towlower(static_cast<wint_t>(code))) {
    case L'd':
      return L'\u00B0';
    case L'p':
      return L'\u00B1';
    case L'c':
      return L'\u2300';
    case L'%':
      return L'%';
    default:
      return 0;
  }
}

class Runs {
 public:
  std::vector<TextRun> read(std::wstring_view text) {
    while (!text.empty()) {
      size_t taken = 1;
      if (const wchar_t c = unicodeAt(text)) {
        runs_.back().text += c;
        taken = kUnicodeLength;
      } else if (text.size() > 2 && text[0] == L'%' && text[1] == L'%') {
        taken = code(text);
      } else {
        runs_.back().text += text[0];
      }
      text.remove_prefix(taken);
    }
    if (runs_.size() > 1 && runs_.back().text.empty()) runs_.pop_back();
    return std::move(runs_);
  }

 private:
  /// What "%%" begins; returns how many characters that are.
  size_t code(std::wstring_view text) {
    const wint_t letter = std::towlower(static_cast<wint_t>(text[2]));
    if (letter == L'u' || letter == L'o') {
      next(letter == L'u');
    } else if (const wchar_t sign = signOf(text[2])) {
      runs_.back().text += sign;
    } else if (text.size() >= 5 && isDigit(text[2]) && isDigit(text[3]) && isDigit(text[4])) {
      runs_.back().text +=
          static_cast<wchar_t>((text[2] - L'0') * 100 + (text[3] - L'0') * 10 + (text[4] - L'0'));
      return 5;
    } else {
      runs_.back().text += text.substr(0, 3);
    }
    return 3;
  }

  void next(bool below) {
    TextRun run = runs_.back();
    run.text.clear();
    bool& flag = below ? run.underlined : run.overlined;
    flag = !flag;
    if (runs_.back().text.empty()) runs_.pop_back();
    runs_.push_back(run);
  }

  std::vector<TextRun> runs_ = std::vector<TextRun>(1);
};

}  // namespace

std::vector<TextRun> textRuns(std::wstring_view text) {
  return Runs().read(text);
}

std::wstring plainLine(std::wstring_view text) {
  std::wstring plain;
  for (const TextRun& run : textRuns(text)) plain += run.text;
  return plain;
}

std::wstring fontOfStyle(AcDbObjectId style) {
  const auto* record = AcDbTextStyleTableRecord::cast(peek(style));
  return record != nullptr ? record->values().font : std::wstring();
}

}  // namespace tarn::host
