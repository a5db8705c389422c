// Points in space.
#pragma once

#include "gevec3d.h"

class AcGePoint3d {
 public:
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  static const AcGePoint3d kOrigin;

  AcGePoint3d& set(double xx, double yy, double zz) { return *this = AcGePoint3d(xx, yy, zz); }
  constexpr AcGePoint3d operator+(const AcGeVector3d& v) const {
    return {x + v.x, y + v.y, z + v.z};
  }
  constexpr AcGePoint3d operator-(const AcGeVector3d& v) const {
    return {x - v.x, y - v.y, z - v.z};
  }
  constexpr AcGeVector3d operator-(const AcGePoint3d& p) const {
    return {x - p.x, y - p.y, z - p.z};
  }
  AcGePoint3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
  AcGePoint3d& operator-=(const AcGeVector3d& v) { return *this = *this - v; }
  constexpr AcGeVector3d asVector() const { return {x, y, z}; }
  double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
  bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }
  ACADHOST_EXPORT AcGePoint3d& transformBy(const AcGeMatrix3d& matrix);
  ACADHOST_EXPORT AcGePoint3d& rotateBy(double angle, const AcGeVector3d& axis,
                                        const AcGePoint3d& center);

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline constexpr AcGePoint3d AcGePoint3d::kOrigin{};

/// Between points and the plain arrays of the function interface.
inline AcGePoint3d asPnt3d(const double* point) {
  return {point[0], point[1], point[2]};
}
inline double* asDblArray(AcGePoint3d& point) {
  return &point.x;
}
inline const double* asDblArray(const AcGePoint3d& point) {
  return &point.x;
}
