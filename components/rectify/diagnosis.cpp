#include "components/rectify/diagnosis.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarn::rectify {
namespace {

using kel::RectifyFault;

// Beyond this many points lines among them are not looked for: the search grows with the cube.
constexpr size_t kMostForLines = 64;
// And beyond this many some are left out when places are suggested.
constexpr size_t kMostForPlaces = 256;

double spread(const std::vector<PlanePoint>& points) {
  double most = 0;
  for (const PlanePoint& p : points)
    most = std::max({most, std::fabs(p.x - points[0].x), std::fabs(p.y - points[0].y)});
  return most;
}

double distance(PlanePoint p, PlanePoint q) {
  return std::hypot(p.x - q.x, p.y - q.y);
}

std::vector<int> allRows(size_t count) {
  std::vector<int> rows(count);
  for (size_t i = 0; i < count; ++i) rows[i] = static_cast<int>(i);
  return rows;
}

/// The rows that share their place with an earlier one.
std::vector<int> repeatedRows(const std::vector<PlanePoint>& sources) {
  constexpr double kSame = 1e-9;
  const double near = kSame * spread(sources);
  std::vector<int> rows;
  if (sources.size() > kMostForPlaces) return rows;
  for (size_t i = 1; i < sources.size(); ++i) {
    const bool repeated = std::any_of(
        sources.begin(), sources.begin() + static_cast<std::ptrdiff_t>(i),
        [&](const PlanePoint& earlier) { return distance(earlier, sources[i]) <= near; });
    if (repeated) rows.push_back(static_cast<int>(i));
  }
  return rows;
}

/// Of those in `rows`, the most that lie on one line.
std::vector<int> longestLine(const std::vector<PlanePoint>& sources, const std::vector<int>& rows,
                             double tolerance) {
  std::vector<int> best;
  for (size_t i = 0; i < rows.size(); ++i) {
    for (size_t j = i + 1; j < rows.size(); ++j) {
      const PlanePoint p = sources[rows[i]], q = sources[rows[j]];
      const double length = distance(p, q);
      if (length <= tolerance) continue;
      std::vector<int> line;
      for (const int row : rows) {
        const PlanePoint r = sources[row];
        const double off = ((q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x)) / length;
        if (std::fabs(off) <= tolerance) line.push_back(row);
      }
      if (line.size() > best.size()) best = line;
    }
  }
  return best.empty() ? rows : best;
}

/// All rows as at most `most` lines of three or more, but for what one last line of two takes;
/// empty when that many do not do.
std::vector<std::vector<int>> linesOf(const std::vector<PlanePoint>& sources, int most,
                                      double tolerance) {
  std::vector<std::vector<int>> lines;
  std::vector<int> rows = allRows(sources.size());
  while (!rows.empty() && static_cast<int>(lines.size()) < most) {
    lines.push_back(longestLine(sources, rows, tolerance));
    std::vector<int> rest;
    std::set_difference(rows.begin(), rows.end(), lines.back().begin(), lines.back().end(),
                        std::back_inserter(rest));
    rows = rest;
  }
  return rows.empty() ? lines : std::vector<std::vector<int>>();
}

PlaceFault onLines(Method method, const std::vector<PlanePoint>& sources) {
  constexpr double kNear = 2e-3;
  PlaceFault fault;
  if (sources.size() > kMostForLines) return fault;
  const auto lines = linesOf(sources, degreeOf(method), kNear * spread(sources));
  if (lines.empty()) return fault;
  fault.points = allRows(sources.size());
  fault.fault = lines.size() == 1   ? RectifyFault::kOnLine
                : lines.size() == 2 ? RectifyFault::kOnConic
                                    : RectifyFault::kOnCubic;
  fault.lines = lines;
  return fault;
}

struct Score {
  bool isSolved = false;
  double value = 0;

  bool isBetterThan(const Score& o) const {
    return isSolved != o.isSolved ? isSolved : value < o.value;
  }
};

/// How good a fit of sources there would be: the error in the worst corner, or the condition where
/// there is no fit.
Score scoreOf(Method method, const std::vector<PointPair>& pairs, const ImageOutline& outline) {
  const Solution solution = solve(method, pairs);
  Score score{solution.fit.has_value(), solution.condition};
  if (!score.isSolved) return score;
  score.value = 0;
  for (const PlanePoint& corner : outline.corners) {
    const PlanePoint v = solution.variance(corner);
    score.value = std::max({score.value, v.x, v.y});
  }
  return score;
}

/// A regular choice of the lattice, a little inside its rim.
std::vector<PlanePoint> candidatesOf(const ImageOutline& outline) {
  constexpr int kFirst = 2, kStep = 4;
  std::vector<PlanePoint> places;
  if (outline.lattice.size() < static_cast<size_t>(kLatticeSide) * kLatticeSide) return places;
  for (int j = kFirst; j < kLatticeSide; j += kStep)
    for (int i = kFirst; i < kLatticeSide; i += kStep)
      places.push_back(outline.lattice[static_cast<size_t>(j) * kLatticeSide + i]);
  return places;
}

double nearestOf(const std::vector<PointPair>& pairs, PlanePoint p) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const PointPair& pair : pairs) nearest = std::min(nearest, distance(pair.source, p));
  return nearest;
}

}  // namespace

PlaceFault explainSources(Method method, const std::vector<PlanePoint>& sources) {
  PlaceFault fault;
  if (sources.empty() || method == Method::kNone) return fault;
  const double extent = spread(sources);
  const std::vector<int> repeated = repeatedRows(sources);
  const int places = static_cast<int>(sources.size() - repeated.size());
  if (!(extent > 0)) return {RectifyFault::kNoExtent, allRows(sources.size()), {}, 0, 0};
  if (places < minimumPointCount(method))
    return {RectifyFault::kTooFewPlaces, repeated, {}, minimumPointCount(method), places};
  if (method == Method::kHelmert) return fault;
  fault.points = allRows(sources.size());
  if (method == Method::kLinear) {
    fault.fault = RectifyFault::kAlongAxis;
    return fault;
  }
  if (PlaceFault lines = onLines(method, sources); lines.fault != RectifyFault::kNone) return lines;
  constexpr double kConic = 1e3;
  if (method == Method::kAffine) {
    fault.fault = RectifyFault::kOnLine;
  } else if (method == Method::kQuadratic || conditionOf(Method::kQuadratic, sources) > kConic) {
    fault.fault = RectifyFault::kOnConic;
  } else {
    fault.fault = RectifyFault::kOnCubic;
  }
  return fault;
}

std::vector<PlanePoint> suggestPlaces(Method method, const std::vector<PlanePoint>& sources,
                                      const ImageOutline& outline) {
  constexpr int kMostSuggested = 3;
  // Variances of 5² are good enough everywhere.
  constexpr double kGoodEnough = 25;
  const std::vector<PlanePoint> candidates = candidatesOf(outline);
  std::vector<PointPair> pairs;
  const size_t step = 1 + sources.size() / kMostForPlaces;
  for (size_t i = 0; i < sources.size(); i += step) pairs.push_back({sources[i], sources[i]});
  std::vector<PlanePoint> suggested;
  if (candidates.empty() || method == Method::kNone) return suggested;
  for (int k = 0; k < kMostSuggested; ++k) {
    Score best;
    double furthest = -1;
    PlanePoint chosen;
    for (const PlanePoint& place : candidates) {
      const double apart = nearestOf(pairs, place);
      pairs.push_back({place, place});
      const Score score = scoreOf(method, pairs, outline);
      pairs.pop_back();
      // Where no single place makes a difference the one furthest from the points comes first.
      const bool even = !score.isBetterThan(best) && !best.isBetterThan(score);
      if (furthest >= 0 && !score.isBetterThan(best) && !(even && apart > furthest)) continue;
      best = score;
      furthest = apart;
      chosen = place;
    }
    suggested.push_back(chosen);
    pairs.push_back({chosen, chosen});
    if (best.isSolved && best.value < kGoodEnough) break;
  }
  return suggested;
}

std::vector<int> farTargets(const std::vector<PointPair>& pairs) {
  constexpr double kThousandfold = 1e3;
  const auto median = [](std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
  };
  std::vector<double> east, north, away;
  for (const PointPair& pair : pairs) {
    east.push_back(pair.target.x);
    north.push_back(pair.target.y);
  }
  std::vector<int> rows;
  if (pairs.empty()) return rows;
  const PlanePoint middle{median(east), median(north)};
  for (const PointPair& pair : pairs) away.push_back(distance(pair.target, middle));
  const double usual = median(away);
  for (size_t i = 0; i < pairs.size(); ++i)
    if (usual > 0 && away[i] > kThousandfold * usual) rows.push_back(static_cast<int>(i));
  return rows;
}

}  // namespace tarn::rectify
