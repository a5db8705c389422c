// Transformations of space: 4 x 4 matrices applied to column vectors.
#pragma once

#include "gepnt3d.h"
#include "gevec3d.h"

class ACADHOST_EXPORT AcGeMatrix3d {
 public:
  /// The identity.
  AcGeMatrix3d() = default;
  static const AcGeMatrix3d kIdentity;

  /// Angles in radians, counter-clockwise seen against the axis; the axis need not have length 1.
  static AcGeMatrix3d translation(const AcGeVector3d& offset);
  static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                               const AcGePoint3d& center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);

  AcGeMatrix3d& setToIdentity() { return *this = AcGeMatrix3d(); }
  AcGeMatrix3d& setToTranslation(const AcGeVector3d& offset);
  AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                              const AcGePoint3d& center = AcGePoint3d::kOrigin);
  AcGeMatrix3d& setToScaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
  AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                               const AcGeVector3d& yAxis, const AcGeVector3d& zAxis);
  void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                      AcGeVector3d& zAxis) const;

  /// The right factor is applied first.
  AcGeMatrix3d operator*(const AcGeMatrix3d& right) const;
  AcGeMatrix3d& operator*=(const AcGeMatrix3d& right) { return *this = *this * right; }
  AcGeMatrix3d& preMultBy(const AcGeMatrix3d& left) { return *this = left * *this; }
  AcGeMatrix3d& postMultBy(const AcGeMatrix3d& right) { return *this = *this * right; }

  double det() const;
  bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;
  /// A singular matrix gives itself.
  AcGeMatrix3d inverse() const;
  AcGeMatrix3d& invert() { return *this = inverse(); }
  AcGeMatrix3d transpose() const;
  AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
  /// Length of the longest transformed axis.
  double scale() const;
  bool isEqualTo(const AcGeMatrix3d& other, const AcGeTol& tol = AcGeContext::gTol) const;
  bool operator==(const AcGeMatrix3d& other) const { return isEqualTo(other); }
  bool operator!=(const AcGeMatrix3d& other) const { return !isEqualTo(other); }
  double operator()(unsigned row, unsigned column) const { return entry[row][column]; }
  double& operator()(unsigned row, unsigned column) { return entry[row][column]; }

  double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

ACADHOST_EXPORT AcGePoint3d operator*(const AcGeMatrix3d& matrix, const AcGePoint3d& point);
/// A direction: the translation has no effect.
ACADHOST_EXPORT AcGeVector3d operator*(const AcGeMatrix3d& matrix, const AcGeVector3d& vector);
