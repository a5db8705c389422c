// System variables: names, types and rules in one table; values come from the current drawing and
// its view, or are kept here.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "adesk.h"
#include "host/editor/inputvalues.h"

namespace tarn::host {

class HostApp;

enum class VariableType { kShort, kReal, kPoint2, kPoint3, kString };

using VariableValue = std::variant<short, double, Point3, std::string>;

enum class VariableError { kNone, kUnknown, kReadOnly, kWrongType, kOutOfRange };

class ACADHOST_EXPORT SystemVariables {
 public:
  explicit SystemVariables(HostApp& app);

  /// Nothing for an unknown name. Names are compared without regard to case.
  std::optional<VariableValue> get(const std::string& name) const;
  std::optional<VariableType> typeOf(const std::string& name) const;
  bool isReadOnly(const std::string& name) const;
  /// A short is taken where a real is wanted; no other type is converted.
  VariableError set(const std::string& name, const VariableValue& value);
  /// A typed text as a value of the variable's type; nothing when it does not fit.
  std::optional<VariableValue> parse(const std::string& name, const std::string& text) const;
  /// All names, sorted.
  std::vector<std::string> names() const;

  short shortOf(const std::string& name) const;

 private:
  HostApp& app_;
  std::map<std::string, VariableValue> stored_;  ///< by upper-case name
};

/// A value as the command line shows it.
ACADHOST_EXPORT std::string formatValue(const VariableValue& value);

}  // namespace tarn::host
