// CString: a wide text value.
#pragma once

#include <cstdarg>
#include <string>
#include <vector>

#include "adesk.h"

class ACADHOST_EXPORT CString {
 public:
  CString() = default;
  CString(const ACHAR* text) : text_(text != nullptr ? text : ACRX_T("")) {}
  CString(const ACHAR* text, int length) : text_(text, static_cast<size_t>(length)) {}
  explicit CString(ACHAR character, int count = 1) : text_(static_cast<size_t>(count), character) {}
  explicit CString(std::wstring text) : text_(std::move(text)) {}

  operator const ACHAR*() const { return text_.c_str(); }
  const ACHAR* GetString() const { return text_.c_str(); }
  int GetLength() const { return static_cast<int>(text_.size()); }
  bool IsEmpty() const { return text_.empty(); }
  void Empty() { text_.clear(); }
  ACHAR GetAt(int index) const { return text_.at(static_cast<size_t>(index)); }

  CString& operator=(const ACHAR* text) {
    text_ = text != nullptr ? text : ACRX_T("");
    return *this;
  }
  CString& operator+=(const CString& other) {
    text_ += other.text_;
    return *this;
  }
  CString& operator+=(const ACHAR* text) {
    text_ += text;
    return *this;
  }
  CString& operator+=(ACHAR character) {
    text_ += character;
    return *this;
  }

  CString Left(int count) const { return Mid(0, count); }
  CString Right(int count) const;
  CString Mid(int first) const { return Mid(first, GetLength()); }
  /// Out-of-range parts are left out.
  CString Mid(int first, int count) const;
  /// Index, or -1.
  int Find(const ACHAR* text, int start = 0) const;
  int Find(ACHAR character, int start = 0) const;
  int ReverseFind(ACHAR character) const;
  /// Number of replacements.
  int Replace(const ACHAR* from, const ACHAR* to);
  /// Order of code points.
  int Compare(const ACHAR* other) const { return text_.compare(other); }
  /// As Compare, without regard to the case of ASCII letters.
  int CompareNoCase(const ACHAR* other) const;
  CString& MakeLower();
  CString& MakeUpper();
  CString& Trim();
  /// As wide printf; %s takes a wide text.
  void Format(const ACHAR* format, ...);
  void FormatV(const ACHAR* format, va_list arguments);

  friend bool operator==(const CString& a, const CString& b) { return a.text_ == b.text_; }
  friend bool operator==(const CString& a, const ACHAR* b) { return a.text_ == b; }
  friend bool operator==(const ACHAR* a, const CString& b) { return b.text_ == a; }
  friend bool operator!=(const CString& a, const CString& b) { return a.text_ != b.text_; }
  friend bool operator!=(const CString& a, const ACHAR* b) { return a.text_ != b; }
  friend bool operator!=(const ACHAR* a, const CString& b) { return b.text_ != a; }
  friend bool operator<(const CString& a, const CString& b) { return a.text_ < b.text_; }
  friend CString operator+(const CString& a, const CString& b) {
    return CString(a.text_ + b.text_);
  }
  friend CString operator+(const CString& a, const ACHAR* b) { return CString(a.text_ + b); }
  friend CString operator+(const ACHAR* a, const CString& b) { return CString(a + b.text_); }
  friend CString operator+(const CString& a, ACHAR b) { return CString(a.text_ + b); }

 private:
  std::wstring text_;
};
