// A value or the reason why there is none. Errors are values; nothing here throws.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace tarn {

/// Done, or one clear sentence that names the thing and the reason.
class [[nodiscard]] Status {
 public:
  Status() = default;
  static Status ok() { return {}; }
  /// File names may hold line ends and worse; the sentence stays one line.
  static Status error(std::string message) {
    for (char& c : message) {
      if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) c = '?';
    }
    Status status;
    status.message_ = std::move(message);
    status.failed_ = true;
    return status;
  }
  bool isOk() const { return !failed_; }
  explicit operator bool() const { return !failed_; }
  const std::string& message() const { return message_; }

 private:
  std::string message_;
  bool failed_ = false;
};

/// A value of type T, or the Status that says why not. `value()` may be called only when it holds.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : value_(std::move(value)) {}
  Result(Status failure) : status_(std::move(failure)) {}
  bool isOk() const { return value_.has_value(); }
  explicit operator bool() const { return isOk(); }
  const Status& status() const { return status_; }
  const std::string& message() const { return status_.message(); }
  T& value() { return *value_; }
  const T& value() const { return *value_; }
  T take() { return std::move(*value_); }

 private:
  std::optional<T> value_;
  Status status_;
};

}  // namespace tarn
