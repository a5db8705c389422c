#include "host/database/textmeasure.h"

namespace tarn::host {

namespace {

constexpr double kLetterWidth = 0.9;
constexpr double kIdeographWidth = 1.4;
constexpr wchar_t kFirstIdeograph = 0x2E80;

TextMeasure& current() {
  static TextMeasure measure = nullptr;
  return measure;
}

}  // namespace

void setTextMeasure(TextMeasure measure) {
  current() = measure;
}

double textWidth(const std::wstring& text, const std::wstring& font) {
  return current() != nullptr ? current()(text, font) : estimatedTextWidth(text);
}

double estimatedTextWidth(std::wstring_view text) {
  double width = 0;
  for (const wchar_t c : text) {
    // The second half of a pair of surrogates, where wide characters have 16 bits.
    if (c >= 0xDC00 && c <= 0xDFFF) continue;
    width += c < kFirstIdeograph ? kLetterWidth : kIdeographWidth;
  }
  return width;
}

}  // namespace tarn::host
