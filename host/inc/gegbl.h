// Tolerances of geometry comparisons.
#pragma once

#include "adesk.h"

/// Points and vectors are equal when their difference is not longer than these lengths.
class AcGeTol {
 public:
  double equalPoint() const { return equalPoint_; }
  double equalVector() const { return equalVector_; }
  AcGeTol& setEqualPoint(double value) {
    equalPoint_ = value;
    return *this;
  }
  AcGeTol& setEqualVector(double value) {
    equalVector_ = value;
    return *this;
  }

 private:
  double equalPoint_ = 1e-10;
  double equalVector_ = 1e-10;
};

struct ACADHOST_EXPORT AcGeContext {
  static AcGeTol gTol;
};
