// Vectors in space.
#pragma once

#include <cmath>

#include "gegbl.h"

class AcGeMatrix3d;

class AcGeVector3d {
 public:
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  static const AcGeVector3d kIdentity, kXAxis, kYAxis, kZAxis;

  AcGeVector3d& set(double xx, double yy, double zz) { return *this = AcGeVector3d(xx, yy, zz); }
  constexpr AcGeVector3d operator+(const AcGeVector3d& v) const {
    return {x + v.x, y + v.y, z + v.z};
  }
  constexpr AcGeVector3d operator-(const AcGeVector3d& v) const {
    return {x - v.x, y - v.y, z - v.z};
  }
  constexpr AcGeVector3d operator-() const { return {-x, -y, -z}; }
  constexpr AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
  constexpr AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
  AcGeVector3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
  AcGeVector3d& operator-=(const AcGeVector3d& v) { return *this = *this - v; }
  AcGeVector3d& operator*=(double s) { return *this = *this * s; }
  AcGeVector3d& operator/=(double s) { return *this = *this / s; }
  AcGeVector3d& negate() { return *this = -*this; }

  constexpr double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
  constexpr AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  double length() const { return std::hypot(x, y, z); }
  constexpr double lengthSqrd() const { return dotProduct(*this); }
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return length() <= tol.equalVector();
  }
  /// Length 1; a zero vector stays zero.
  AcGeVector3d normal() const {
    const double size = length();
    return size > 0.0 ? *this / size : *this;
  }
  AcGeVector3d& normalize() { return *this = normal(); }
  /// Angle between the two, 0 to pi.
  double angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), dotProduct(v));
  }
  bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }
  bool operator!=(const AcGeVector3d& v) const { return !isEqualTo(v); }
  /// Turned by an angle in radians about an axis through the origin, counter-clockwise.
  ACADHOST_EXPORT AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis);
  ACADHOST_EXPORT AcGeVector3d& transformBy(const AcGeMatrix3d& matrix);

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};

constexpr AcGeVector3d operator*(double s, const AcGeVector3d& v) {
  return v * s;
}
