// The framework's values: text, list of texts, variant. Text is UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "inc/kelapi.h"

namespace kel {

/// Text of the framework, UTF-8.
class DString {
 public:
  DString() = default;
  DString(const char* utf8) : text_(utf8 ? utf8 : "") {}
  DString(std::string utf8) : text_(std::move(utf8)) {}
  DString(std::string_view utf8) : text_(utf8) {}

  const char* c_str() const { return text_.c_str(); }
  const std::string& str() const { return text_; }
  bool isEmpty() const { return text_.empty(); }

  friend bool operator==(const DString& a, const DString& b) { return a.text_ == b.text_; }
  friend bool operator!=(const DString& a, const DString& b) { return a.text_ != b.text_; }
  friend bool operator<(const DString& a, const DString& b) { return a.text_ < b.text_; }

 private:
  std::string text_;
};

template <typename T>
using List = std::vector<T>;
using StringList = List<DString>;

/// Nothing, a truth value, a whole number, a real number or a text.
class KEL_API Variant {
 public:
  Variant() = default;
  Variant(bool value) : value_(value) {}
  Variant(int value) : value_(static_cast<int64_t>(value)) {}
  Variant(int64_t value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(const char* value) : value_(DString(value)) {}
  Variant(DString value) : value_(std::move(value)) {}

  bool isNull() const { return std::holds_alternative<std::monostate>(value_); }

  /// Text form: empty for nothing, "true" and "false", the shortest text of a number.
  DString toString() const;
  /// Whole-number form of a number, a truth value or a text that is one; else `fallback`.
  int64_t toInt(int64_t fallback = 0) const;

 private:
  std::variant<std::monostate, bool, int64_t, double, DString> value_;
};

}  // namespace kel
