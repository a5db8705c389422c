// Vectors in the plane.
#pragma once

#include <cmath>

#include "gegbl.h"

class AcGeVector2d {
 public:
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

  constexpr AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  constexpr AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  constexpr AcGeVector2d operator-() const { return {-x, -y}; }
  constexpr AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
  constexpr AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
  constexpr double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  double length() const { return std::hypot(x, y); }
  constexpr double lengthSqrd() const { return x * x + y * y; }
  bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }
  bool operator!=(const AcGeVector2d& v) const { return !isEqualTo(v); }

  double x = 0.0;
  double y = 0.0;
};
