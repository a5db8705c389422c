// Points in the plane.
#pragma once

#include "gevec2d.h"

class AcGePoint2d {
 public:
  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}
  static const AcGePoint2d kOrigin;

  AcGePoint2d& set(double xx, double yy) { return *this = AcGePoint2d(xx, yy); }
  constexpr AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  constexpr AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  constexpr AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
  double distanceTo(const AcGePoint2d& p) const { return (*this - p).length(); }
  bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint2d& p) const { return !isEqualTo(p); }

  double x = 0.0;
  double y = 0.0;
};

inline constexpr AcGePoint2d AcGePoint2d::kOrigin{};
