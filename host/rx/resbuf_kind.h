// Which member of a result buffer holds, by its type.
#pragma once

#include "adesk.h"

namespace tarn::host {

enum class ResbufKind {
  kUnknown,
  kNothing,
  kText,
  kReal,
  kPoint,
  kInt16,
  kInt32,
  kInt64,
  kName,
  kBinary
};

/// For group codes (0 to 1071) and RT codes.
ACADHOST_EXPORT ResbufKind resbufKindOf(int type);

}  // namespace tarn::host
