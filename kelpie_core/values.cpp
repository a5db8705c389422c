#include <cmath>

#include "base/text.h"
#include "inc/kvalues.h"

namespace kel {

DString Variant::toString() const {
  if (const auto* text = std::get_if<DString>(&value_)) return *text;
  if (const auto* truth = std::get_if<bool>(&value_)) return *truth ? "true" : "false";
  if (const auto* whole = std::get_if<int64_t>(&value_)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value_)) return tarn::formatDouble(*real);
  return {};
}

int64_t Variant::toInt(int64_t fallback) const {
  if (const auto* truth = std::get_if<bool>(&value_)) return *truth ? 1 : 0;
  if (const auto* whole = std::get_if<int64_t>(&value_)) return *whole;
  double real = 0;
  if (const auto* number = std::get_if<double>(&value_)) {
    real = *number;
  } else if (!tarn::parseDouble(toString().str(), real)) {
    return fallback;
  }
  constexpr double kLimit = 9e18;
  return std::fabs(real) < kLimit ? static_cast<int64_t>(real) : fallback;
}

}  // namespace kel
