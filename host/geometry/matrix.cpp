#include <algorithm>
#include <cmath>

#include "gegbl.h"
#include "gemat3d.h"
#include "gepnt3d.h"
#include "gevec3d.h"

AcGeTol AcGeContext::gTol;

const AcGeMatrix3d AcGeMatrix3d::kIdentity;

namespace {

/// The product with the fourth coordinate taken as 1 (points) or 0 (directions).
void apply(const AcGeMatrix3d& m, const double (&in)[3], double w, double (&out)[3]) {
  for (int row = 0; row < 3; ++row) {
    out[row] = m.entry[row][0] * in[0] + m.entry[row][1] * in[1] + m.entry[row][2] * in[2] +
               m.entry[row][3] * w;
  }
}

/// Puts `linear` (about the origin) about `center`.
AcGeMatrix3d about(const AcGePoint3d& center, AcGeMatrix3d linear) {
  const AcGeVector3d moved = linear * center.asVector();
  linear.entry[0][3] = center.x - moved.x;
  linear.entry[1][3] = center.y - moved.y;
  linear.entry[2][3] = center.z - moved.z;
  return linear;
}

}  // namespace

AcGePoint3d operator*(const AcGeMatrix3d& matrix, const AcGePoint3d& point) {
  double out[3];
  apply(matrix, {point.x, point.y, point.z}, 1.0, out);
  return {out[0], out[1], out[2]};
}

AcGeVector3d operator*(const AcGeMatrix3d& matrix, const AcGeVector3d& vector) {
  double out[3];
  apply(matrix, {vector.x, vector.y, vector.z}, 0.0, out);
  return {out[0], out[1], out[2]};
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& matrix) {
  return *this = matrix * *this;
}

AcGeVector3d& AcGeVector3d::rotateBy(double angle, const AcGeVector3d& axis) {
  return transformBy(AcGeMatrix3d::rotation(angle, axis));
}

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& matrix) {
  return *this = matrix * *this;
}

AcGePoint3d& AcGePoint3d::rotateBy(double angle, const AcGeVector3d& axis,
                                   const AcGePoint3d& center) {
  return *this = center + (*this - center).rotateBy(angle, axis);
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& offset) {
  AcGeMatrix3d m;
  m.entry[0][3] = offset.x;
  m.entry[1][3] = offset.y;
  m.entry[2][3] = offset.z;
  return m;
}

AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d& axis,
                                    const AcGePoint3d& center) {
  const AcGeVector3d n = axis.normal();
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const double d = 1.0 - c;
  AcGeMatrix3d m;
  m.setCoordSystem(AcGePoint3d::kOrigin,
                   {c + n.x * n.x * d, n.y * n.x * d + n.z * s, n.z * n.x * d - n.y * s},
                   {n.x * n.y * d - n.z * s, c + n.y * n.y * d, n.z * n.y * d + n.x * s},
                   {n.x * n.z * d + n.y * s, n.y * n.z * d - n.x * s, c + n.z * n.z * d});
  return about(center, m);
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d& center) {
  AcGeMatrix3d m;
  for (int i = 0; i < 3; ++i) m.entry[i][i] = factor;
  return about(center, m);
}

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& offset) {
  return *this = translation(offset);
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d& axis,
                                          const AcGePoint3d& center) {
  return *this = rotation(angle, axis, center);
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double factor, const AcGePoint3d& center) {
  return *this = scaling(factor, center);
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                           const AcGeVector3d& yAxis, const AcGeVector3d& zAxis) {
  setToIdentity();
  const double columns[4][3] = {{xAxis.x, xAxis.y, xAxis.z},
                                {yAxis.x, yAxis.y, yAxis.z},
                                {zAxis.x, zAxis.y, zAxis.z},
                                {origin.x, origin.y, origin.z}};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) entry[row][column] = columns[column][row];
  }
  return *this;
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                                  AcGeVector3d& zAxis) const {
  origin.set(entry[0][3], entry[1][3], entry[2][3]);
  xAxis.set(entry[0][0], entry[1][0], entry[2][0]);
  yAxis.set(entry[0][1], entry[1][1], entry[2][1]);
  zAxis.set(entry[0][2], entry[1][2], entry[2][2]);
}

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& right) const {
  AcGeMatrix3d product;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      double sum = 0.0;
      for (int k = 0; k < 4; ++k) sum += entry[row][k] * right.entry[k][column];
      product.entry[row][column] = sum;
    }
  }
  return product;
}

double AcGeMatrix3d::det() const {
  AcGePoint3d origin;
  AcGeVector3d x;
  AcGeVector3d y;
  AcGeVector3d z;
  getCoordSystem(origin, x, y, z);
  return x.crossProduct(y).dotProduct(z);
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
  return !(std::abs(det()) > tol.equalVector());
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
  const double d = det();
  if (d == 0.0 || !std::isfinite(d)) return *this;
  AcGePoint3d origin;
  AcGeVector3d x;
  AcGeVector3d y;
  AcGeVector3d z;
  getCoordSystem(origin, x, y, z);
  AcGeMatrix3d m;
  m.setCoordSystem(AcGePoint3d::kOrigin, y.crossProduct(z) / d, z.crossProduct(x) / d,
                   x.crossProduct(y) / d);
  m = m.transpose();
  const AcGeVector3d back = m * origin.asVector();
  m.entry[0][3] = -back.x;
  m.entry[1][3] = -back.y;
  m.entry[2][3] = -back.z;
  return m;
}

AcGeMatrix3d AcGeMatrix3d::transpose() const {
  AcGeMatrix3d m;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) m.entry[row][column] = entry[column][row];
  }
  return m;
}

double AcGeMatrix3d::scale() const {
  AcGePoint3d origin;
  AcGeVector3d x;
  AcGeVector3d y;
  AcGeVector3d z;
  getCoordSystem(origin, x, y, z);
  return std::max({x.length(), y.length(), z.length()});
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& other, const AcGeTol& tol) const {
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      if (!(std::abs(entry[row][column] - other.entry[row][column]) <= tol.equalPoint())) {
        return false;
      }
    }
  }
  return true;
}
