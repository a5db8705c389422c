#include <algorithm>
#include <cwctype>

#include "afxstr.h"
#include "base/text.h"
#include "host/ui/wideformat.h"

CString CString::Right(int count) const {
  return Mid(std::max(0, GetLength() - std::max(0, count)));
}

CString CString::Mid(int first, int count) const {
  const int from = std::clamp(first, 0, GetLength());
  const int length = std::clamp(count, 0, GetLength() - from);
  return CString(text_.substr(static_cast<size_t>(from), static_cast<size_t>(length)));
}

int CString::Find(const ACHAR* text, int start) const {
  if (start < 0 || start > GetLength()) return -1;
  const size_t at = text_.find(text, static_cast<size_t>(start));
  return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

int CString::Find(ACHAR character, int start) const {
  const ACHAR text[] = {character, 0};
  return Find(text, start);
}

int CString::ReverseFind(ACHAR character) const {
  const size_t at = text_.rfind(character);
  return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

int CString::Replace(const ACHAR* from, const ACHAR* to) {
  const std::wstring piece = from;
  if (piece.empty()) return 0;
  int count = 0;
  for (size_t at = text_.find(piece); at != std::wstring::npos; at = text_.find(piece, at + 1)) {
    ++count;
    at += piece.size() - 1;
  }
  text_ = tarn::replaceAll(text_, piece, to);
  return count;
}

int CString::CompareNoCase(const ACHAR* other) const {
  return tarn::toLower(text_).compare(tarn::toLower(std::wstring_view(other)));
}

CString& CString::MakeLower() {
  std::transform(text_.begin(), text_.end(), text_.begin(),
                 [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
  return *this;
}

CString& CString::MakeUpper() {
  std::transform(text_.begin(), text_.end(), text_.begin(),
                 [](wchar_t c) { return static_cast<wchar_t>(std::towupper(c)); });
  return *this;
}

CString& CString::Trim() {
  text_ = std::wstring(tarn::trim(std::wstring_view(text_)));
  return *this;
}

void CString::Format(const ACHAR* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  FormatV(format, arguments);
  va_end(arguments);
}

void CString::FormatV(const ACHAR* format, va_list arguments) {
  text_ = tarn::host::formatWide(format, arguments);
}
