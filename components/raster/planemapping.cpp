#include "components/raster/planemapping.h"

#include <algorithm>
#include <cmath>

namespace tarn::raster {
namespace {

double valueAt(const PlaneMapping::Terms& c, double x, double y) {
  return c[0] + c[1] * x + c[2] * y + c[3] * x * x + c[4] * x * y + c[5] * y * y;
}

/// The terms for points that are counted in steps of `scale`.
PlaneMapping::Terms substituted(const PlaneMapping::Terms& c, PlanePoint scale) {
  return {c[0],
          c[1] * scale.x,
          c[2] * scale.y,
          c[3] * scale.x * scale.x,
          c[4] * scale.x * scale.y,
          c[5] * scale.y * scale.y};
}

}  // namespace

double Slope::longest() const {
  const double a = ux * ux + vx * vx, d = uy * uy + vy * vy, b = ux * uy + vx * vy;
  return std::sqrt((a + d) / 2 + std::hypot((a - d) / 2, b));
}

PlaneMapping PlaneMapping::pixelsOf(const GeoTransform& g) {
  const double det = g.a * g.e - g.b * g.d;
  return {{g.x0, g.y0}, {0, g.e / det, -g.b / det, 0, 0, 0}, {0, -g.d / det, g.a / det, 0, 0, 0}};
}

PlaneMapping PlaneMapping::through(PlanePoint centre, PlanePoint step,
                                   const std::array<std::array<PlanePoint, 3>, 3>& values) {
  const auto terms = [&](double PlanePoint::*part) {
    const auto value = [&](int i, int j) { return values[j][i].*part; };
    const double sx = step.x, sy = step.y, middle = value(1, 1);
    return Terms{middle,
                 (value(2, 1) - value(0, 1)) / (2 * sx),
                 (value(1, 2) - value(1, 0)) / (2 * sy),
                 (value(2, 1) + value(0, 1) - 2 * middle) / (2 * sx * sx),
                 (value(2, 2) - value(0, 2) - value(2, 0) + value(0, 0)) / (4 * sx * sy),
                 (value(1, 2) + value(1, 0) - 2 * middle) / (2 * sy * sy)};
  };
  return {centre, terms(&PlanePoint::x), terms(&PlanePoint::y)};
}

PlanePoint PlaneMapping::at(double x, double y) const {
  return {valueAt(u_, x - centre_.x, y - centre_.y), valueAt(v_, x - centre_.x, y - centre_.y)};
}

Slope PlaneMapping::slopeAt(double x, double y) const {
  const double X = x - centre_.x, Y = y - centre_.y;
  return {u_[1] + 2 * u_[3] * X + u_[4] * Y, u_[2] + u_[4] * X + 2 * u_[5] * Y,
          v_[1] + 2 * v_[3] * X + v_[4] * Y, v_[2] + v_[4] * X + 2 * v_[5] * Y};
}

bool PlaneMapping::isAffine() const {
  return std::all_of(u_.begin() + 3, u_.end(), [](double c) { return c == 0; }) &&
         std::all_of(v_.begin() + 3, v_.end(), [](double c) { return c == 0; });
}

bool PlaneMapping::keepsSide(PlanePoint low, PlanePoint high, double orientation) const {
  const Slope middle = slopeAt((low.x + high.x) / 2, (low.y + high.y) / 2);
  const double w = std::fabs(high.x - low.x) / 2, h = std::fabs(high.y - low.y) / 2;
  // How far each derivative may be from the one in the middle.
  const auto far = [&](double square, double mixed, double along, double other) {
    return 2 * std::fabs(square) * along + std::fabs(mixed) * other;
  };
  const double ux = far(u_[3], u_[4], w, h), uy = far(u_[5], u_[4], h, w);
  const double vx = far(v_[3], v_[4], w, h), vy = far(v_[5], v_[4], h, w);
  const double change = ux * (std::fabs(middle.vy) + vy) + vy * std::fabs(middle.ux) +
                        uy * (std::fabs(middle.vx) + vx) + vx * std::fabs(middle.uy);
  return middle.determinant() * orientation > change;
}

std::optional<PlanePoint> PlaneMapping::invert(PlanePoint target) const {
  // Newton; an affine mapping is there after one step.
  constexpr int kMostSteps = 40;
  constexpr double kNear = 1e-7;
  PlanePoint p = centre_;
  for (int step = 0; step < kMostSteps; ++step) {
    const PlanePoint value = at(p.x, p.y);
    const double du = target.x - value.x, dv = target.y - value.y;
    const Slope slope = slopeAt(p.x, p.y);
    const double det = slope.determinant();
    if (!std::isfinite(du + dv) || det == 0) return std::nullopt;
    p.x += (du * slope.vy - dv * slope.uy) / det;
    p.y += (dv * slope.ux - du * slope.vx) / det;
    if (std::hypot(du, dv) < kNear || (step == 0 && isAffine())) return p;
  }
  return std::nullopt;
}

PlaneMapping PlaneMapping::onGrid(PlanePoint origin, PlanePoint step) const {
  return {{(centre_.x - origin.x) / step.x, (centre_.y - origin.y) / step.y},
          substituted(u_, step),
          substituted(v_, step)};
}

PlaneMapping PlaneMapping::scaled(double byU, double byV) const {
  PlaneMapping result = *this;
  for (double& c : result.u_) c *= byU;
  for (double& c : result.v_) c *= byV;
  return result;
}

PlaneMapping::Row PlaneMapping::row(double y) const {
  const double Y = y - centre_.y;
  const auto along = [&](const Terms& c) {
    return std::array<double, 3>{c[0] + c[2] * Y + c[5] * Y * Y, c[1] + c[4] * Y, c[3]};
  };
  // Slopes along the row are ux = a + b X, and so on; their determinant is a square in X.
  const double ux[2] = {u_[1] + u_[4] * Y, 2 * u_[3]}, uy[2] = {u_[2] + 2 * u_[5] * Y, u_[4]};
  const double vx[2] = {v_[1] + v_[4] * Y, 2 * v_[3]}, vy[2] = {v_[2] + 2 * v_[5] * Y, v_[4]};
  return {
      centre_.x,
      along(u_),
      along(v_),
      {ux[0] * vy[0] - uy[0] * vx[0], ux[0] * vy[1] + ux[1] * vy[0] - uy[0] * vx[1] - uy[1] * vx[0],
       ux[1] * vy[1] - uy[1] * vx[1]}};
}

double PlaneMapping::bend(double step) const {
  double most = 0;
  for (const Terms& c : {u_, v_})
    most = std::max(most, std::fabs(c[3]) + std::fabs(c[4]) + std::fabs(c[5]));
  return most * step * step;
}

}  // namespace tarn::raster
