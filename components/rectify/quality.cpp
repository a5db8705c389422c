#include "components/rectify/quality.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "components/rectify/diagnosis.h"
#include "components/rectify/repair.h"

namespace tarn::rectify {
namespace {

using kel::RectifyFault;
using kel::RectifyHint;
using kel::RectifyQuality;

constexpr int kGood = 0, kUnsolvable = 1, kWeak = 2;
constexpr double kWeakCondition = 1e4;
constexpr double kWeakFactor = 100;
// From here on a better spread is worth a hint.
constexpr double kAdviseFactor = 20;
// Thinner than this an image is a line.
constexpr double kNoArea = 1e-6;

bool isFinite(const PointPair& p) {
  return std::isfinite(p.source.x) && std::isfinite(p.source.y) && std::isfinite(p.target.x) &&
         std::isfinite(p.target.y);
}

bool isFinite(const Fit& fit) {
  const auto finite = [](double c) { return std::isfinite(c); };
  return std::all_of(fit.u.begin(), fit.u.end(), finite) &&
         std::all_of(fit.v.begin(), fit.v.end(), finite);
}

void setFault(RectifyQuality& quality, int status, RectifyFault fault,
              std::vector<int> points = {}) {
  quality.status = status;
  quality.fault = fault;
  quality.faultPoints = std::move(points);
}

void setFault(RectifyQuality& quality, int status, const PlaceFault& places) {
  setFault(quality, status, places.fault, places.points);
  quality.lines = places.lines;
  quality.pointsNeeded = places.needed;
  quality.pointsThere = places.there;
}

/// The fault of points that determine no transformation.
void explainUnsolved(Method method, const std::vector<PointPair>& pairs, RectifyQuality& quality) {
  const int least = minimumPointCount(method);
  if (static_cast<int>(pairs.size()) < least) {
    setFault(quality, kUnsolvable, RectifyFault::kTooFew);
    quality.pointsNeeded = least;
    quality.pointsThere = static_cast<int>(pairs.size());
    return;
  }
  std::vector<int> bad;
  for (size_t i = 0; i < pairs.size(); ++i)
    if (!isFinite(pairs[i])) bad.push_back(static_cast<int>(i));
  if (!bad.empty()) {
    setFault(quality, kUnsolvable, RectifyFault::kNotFinite, bad);
    return;
  }
  std::vector<PlanePoint> sources;
  sources.reserve(pairs.size());
  for (const PointPair& pair : pairs) sources.push_back(pair.source);
  const PlaceFault places = explainSources(method, sources);
  if (places.fault != RectifyFault::kNone && quality.condition > kWeakCondition) {
    setFault(quality, kUnsolvable, places);
    return;
  }
  setFault(quality, kUnsolvable, RectifyFault::kTargetsFlat, farTargets(pairs));
}

/// Least share of its length that the image keeps as width, at the place where that is most; and
/// whether it turns over somewhere.
struct Shape {
  double widest = 0;
  bool folds = false;
};

Shape shapeOf(const Fit& fit, const ImageOutline& outline) {
  Shape shape;
  bool positive = false, negative = false;
  for (const PlanePoint& p : outline.lattice) {
    const Slope slope = fit.slopeAt(p);
    const double longest = slope.longest(), area = slope.determinant();
    if (longest > 0) shape.widest = std::max(shape.widest, std::fabs(area) / (longest * longest));
    positive = positive || area > 0;
    negative = negative || area < 0;
  }
  shape.folds = positive && negative;
  return shape;
}

double cornerFactorOf(const Solution& solution, const ImageOutline& outline) {
  double most = 0;
  for (const PlanePoint& corner : outline.corners) {
    const PlanePoint variance = solution.variance(corner);
    most = std::max({most, std::sqrt(variance.x), std::sqrt(variance.y)});
  }
  return most;
}

/// What s0 becomes without each point, from the residuals and their variances: exact for least
/// squares, and no fit has to be made again.
void findWorst(const Solution& solution, const std::vector<PointPair>& pairs,
               const std::vector<Residual>& residuals, double sum, RectifyQuality& quality) {
  const int redundancy = quality.redundancy - 2;
  if (redundancy <= 0) return;
  constexpr double kDetermined = 1e-9;
  double best = quality.s0;
  for (size_t i = 0; i < pairs.size(); ++i) {
    const PlanePoint h = solution.variance(pairs[i].source);
    if (1 - h.x < kDetermined || 1 - h.y < kDetermined) continue;
    const Residual& r = residuals[i];
    const double without = std::max(0.0, sum - r.dx * r.dx / (1 - h.x) - r.dy * r.dy / (1 - h.y));
    const double s0 = std::sqrt(without / redundancy);
    if (s0 >= best) continue;
    best = s0;
    quality.worstPoint = static_cast<int>(i);
    quality.s0WithoutWorst = s0;
  }
}

void measure(const Solution& solution, const std::vector<PointPair>& pairs,
             std::vector<Residual>& residuals, RectifyQuality& quality) {
  double sum = 0;
  for (size_t i = 0; i < pairs.size(); ++i) {
    Residual& r = residuals[i];
    const PlanePoint p = solution.fit->at(pairs[i].source);
    // Without redundancy what differs is rounding.
    r = quality.redundancy == 0 ? Residual{}
                                : Residual{p.x - pairs[i].target.x, p.y - pairs[i].target.y};
    sum += r.dx * r.dx + r.dy * r.dy;
  }
  quality.rmse = std::sqrt(sum / static_cast<double>(pairs.size()));
  if (quality.redundancy > 0) quality.s0 = std::sqrt(sum / quality.redundancy);
  findWorst(solution, pairs, residuals, sum, quality);
}

void judgeStrength(Method method, const std::vector<PointPair>& pairs, const Shape& shape,
                   RectifyQuality& quality) {
  std::vector<PlanePoint> sources;
  sources.reserve(pairs.size());
  for (const PointPair& pair : pairs) sources.push_back(pair.source);
  if (quality.condition > kWeakCondition) {
    setFault(quality, kWeak, explainSources(method, sources));
  } else if (quality.cornerFactor > kWeakFactor) {
    setFault(quality, kWeak, RectifyFault::kCornerFar);
  } else if (shape.folds) {
    setFault(quality, kWeak, RectifyFault::kFolds);
  } else {
    setFault(quality, kGood, RectifyFault::kNone);
    if (quality.cornerFactor > kAdviseFactor) {
      quality.hint = RectifyHint::kSpreadPoints;
    } else if (quality.redundancy == 0) {
      quality.hint = RectifyHint::kNoCheck;
    }
  }
}

void listCoefficients(const Fit& fit, RectifyQuality& quality) {
  const int terms = termCount(fit.method);
  quality.coefficientsX.assign(fit.u.begin(), fit.u.begin() + terms);
  quality.coefficientsY.assign(fit.v.begin(), fit.v.begin() + terms);
  quality.centre = {fit.source.centre.x, fit.source.centre.y, fit.source.scale,
                    fit.target.centre.x, fit.target.centre.y, fit.target.scale};
}

}  // namespace

double Residual::length() const {
  return std::hypot(dx, dy);
}

ImageOutline ImageOutline::rectangle(PlanePoint low, PlanePoint high) {
  ImageOutline outline;
  outline.corners = {low, {high.x, low.y}, {low.x, high.y}, high};
  for (int j = 0; j < kLatticeSide; ++j) {
    for (int i = 0; i < kLatticeSide; ++i) {
      outline.lattice.push_back({low.x + (high.x - low.x) * i / (kLatticeSide - 1),
                                 low.y + (high.y - low.y) * j / (kLatticeSide - 1)});
    }
  }
  return outline;
}

ImageOutline ImageOutline::around(const std::vector<PointPair>& pairs) {
  if (pairs.empty()) return {};
  PlanePoint low = pairs[0].source, high = low;
  for (const PointPair& pair : pairs) {
    low = {std::min(low.x, pair.source.x), std::min(low.y, pair.source.y)};
    high = {std::max(high.x, pair.source.x), std::max(high.y, pair.source.y)};
  }
  return rectangle(low, high);
}

Assessment assess(Method method, const std::vector<PointPair>& pairs, const ImageOutline& outline) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Assessment result;
  result.solution = solve(method, pairs);
  result.residuals.assign(pairs.size(), {kNone, kNone});
  RectifyQuality& quality = result.quality;
  quality.pointCount = static_cast<int>(pairs.size());
  quality.condition = result.solution.condition;
  quality.redundancy = std::max(0, 2 * static_cast<int>(pairs.size()) - unknownCount(method));
  const bool solved = result.solution.fit && isFinite(*result.solution.fit);
  const Shape shape = solved ? shapeOf(*result.solution.fit, outline) : Shape();
  if (!solved || shape.widest < kNoArea) {
    result.solution.fit.reset();
    quality.redundancy = 0;
    explainUnsolved(method, pairs, quality);
  } else {
    measure(result.solution, pairs, result.residuals, quality);
    quality.cornerFactor = cornerFactorOf(result.solution, outline);
    judgeStrength(method, pairs, shape, quality);
    listCoefficients(*result.solution.fit, quality);
  }
  // Where the targets are at fault no further source helps.
  const bool ofTargets = quality.fault == RectifyFault::kTargetsFlat;
  if ((quality.status != kGood && !ofTargets) || quality.cornerFactor > kAdviseFactor) {
    std::vector<PlanePoint> sources;
    for (const PointPair& pair : pairs)
      if (isFinite(pair)) sources.push_back(pair.source);
    for (const PlanePoint& p : suggestPlaces(method, sources, outline))
      quality.suggested.push_back({p.x, p.y, 0.0});
  }
  // Factors of their own, also below 0, are the linear method's; the others have no mirrored
  // images.
  const bool fitsAsItIs = method == Method::kLinear && quality.status == kGood;
  quality.repair = findRepair(pairs, outline, fitsAsItIs ? quality.rmse : HUGE_VAL);
  return result;
}

}  // namespace tarn::rectify
