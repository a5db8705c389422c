#include "components/rectify/chain.h"

#include <cmath>
#include <utility>

namespace tarn::rectify {
namespace {

PlanePoint placed(const kel::RectifyPlacement& placement, PlanePoint p) {
  PlanePoint result;
  placement.applyTo(p.x, p.y, result.x, result.y);
  return result;
}

Slope times(const Slope& outer, const Slope& inner) {
  return {outer.ux * inner.ux + outer.uy * inner.vx, outer.ux * inner.uy + outer.uy * inner.vy,
          outer.vx * inner.ux + outer.vy * inner.vx, outer.vx * inner.uy + outer.vy * inner.vy};
}

Slope slopeOf(const kel::RectifyPlacement& p) {
  return {p.a, p.b, p.d, p.e};
}

bool isFinite(PlanePoint p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

}  // namespace

Chain::Chain(const raster::GeoTransform& ground, int width, int height,
             const kel::RectifyPlacement& after, std::vector<Step> steps)
    : width_(width), height_(height), steps_(std::move(steps)) {
  // Both are affine, so they are one.
  const PlanePoint origin = placed(after, {ground.x0, ground.y0});
  const Slope linear = times(slopeOf(after), {ground.a, ground.b, ground.d, ground.e});
  base_ = {origin.x, origin.y, linear.ux, linear.uy, linear.vx, linear.vy};
  prepareInverse();
}

raster::GeoTransform Chain::affine() const {
  return {base_.originX, base_.a, base_.b, base_.originY, base_.d, base_.e};
}

PlanePoint Chain::at(PlanePoint pixel) const {
  PlanePoint p = placed(base_, pixel);
  for (const Step& step : steps_) p = placed(step.after, step.fit.at(p));
  return p;
}

Chain::Followed Chain::follow(PlanePoint pixel) const {
  Followed f{placed(base_, pixel), slopeOf(base_)};
  for (const Step& step : steps_) {
    Slope slope;
    f.point = placed(step.after, step.fit.follow(f.point, slope));
    f.slope = times(slopeOf(step.after), times(slope, f.slope));
  }
  return f;
}

Slope Chain::slopeAt(PlanePoint pixel) const {
  return follow(pixel).slope;
}

void Chain::prepareInverse() {
  constexpr int kSide = 9;
  std::vector<PointPair> pairs;
  for (int j = 0; j < kSide; ++j) {
    for (int i = 0; i < kSide; ++i) {
      const PlanePoint pixel{width_ * i / (kSide - 1.0), height_ * j / (kSide - 1.0)};
      pairs.push_back({at(pixel), pixel});
    }
  }
  const Slope middle = slopeAt({width_ / 2.0, height_ / 2.0});
  orientation_ = middle.determinant() < 0 ? -1 : 1;
  const Solution about = solve(Method::kAffine, pairs);
  if (!about.fit) return;
  around_ = about.fit->source;
  const Normaliser& to = about.fit->target;
  const double numbers[6] = {to.centre.x + to.scale * about.fit->u[0],
                             to.scale * about.fit->u[1],
                             to.scale * about.fit->u[2],
                             to.centre.y + to.scale * about.fit->v[0],
                             to.scale * about.fit->v[1],
                             to.scale * about.fit->v[2]};
  std::copy(numbers, numbers + 6, about_);
}

std::optional<PlanePoint> Chain::pixelFromAbout(PlanePoint p) const {
  if (!isFinite(p)) return std::nullopt;
  const PlanePoint n = around_.to(p);
  return pixelOf(p, {about_[0] + about_[1] * n.x + about_[2] * n.y,
                     about_[3] + about_[4] * n.x + about_[5] * n.y});
}

std::optional<PlanePoint> Chain::pixelOf(PlanePoint p) const {
  if (const auto found = pixelFromAbout(p)) return found;
  if (!isFinite(p) || isAffine()) return std::nullopt;
  // Strongly bent images: from the nearest of some places.
  constexpr int kSide = 17;
  PlanePoint nearest;
  double least = HUGE_VAL;
  for (int j = 0; j < kSide; ++j) {
    for (int i = 0; i < kSide; ++i) {
      const PlanePoint pixel{width_ * i / (kSide - 1.0), height_ * j / (kSide - 1.0)};
      const PlanePoint q = at(pixel);
      const double away = std::hypot(q.x - p.x, q.y - p.y);
      if (away < least) {
        least = away;
        nearest = pixel;
      }
    }
  }
  return pixelOf(p, nearest);
}

std::optional<PlanePoint> Chain::pixelOf(PlanePoint p, PlanePoint start) const {
  constexpr int kMostSteps = 16;
  // A step this short makes the next one, whose error is its square, one of rounding.
  constexpr double kLastStep = 1e-4;
  const double farthest = 2.0 * std::max(width_, height_) + 16;
  PlanePoint pixel = start;
  for (int step = 0; step < kMostSteps; ++step) {
    const Followed f = follow(pixel);
    const double det = f.slope.determinant();
    if (!isFinite(f.point) || det == 0 || !std::isfinite(det)) return std::nullopt;
    const double dx = p.x - f.point.x, dy = p.y - f.point.y;
    const PlanePoint by{(dx * f.slope.vy - dy * f.slope.uy) / det,
                        (dy * f.slope.ux - dx * f.slope.vx) / det};
    pixel = {pixel.x + by.x, pixel.y + by.y};
    if (!isFinite(pixel)) return std::nullopt;
    if (std::fabs(by.x) + std::fabs(by.y) < kLastStep || isAffine())
      return det * orientation_ > 0 ? std::optional<PlanePoint>(pixel) : std::nullopt;
    if (std::fabs(pixel.x - width_ / 2.0) > farthest ||
        std::fabs(pixel.y - height_ / 2.0) > farthest)
      return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace tarn::rectify
