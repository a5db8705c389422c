#include "host/geometry/spline.h"

#include <algorithm>
#include <cmath>

namespace tarn::host {

namespace {

constexpr int kHighestDegree = 25;
constexpr int kPiecesOfSpan = 16;
constexpr size_t kMostPoints = 20000;

struct Homogeneous {
  double x, y, z, w;
};

Homogeneous mixed(const Homogeneous& a, const Homogeneous& b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t,
          a.w + (b.w - a.w) * t};
}

/// Second derivatives at the points, by the three-term recursion of cubic splines.
std::vector<AcGeVector3d> curvatures(const std::vector<AcGePoint3d>& p,
                                     const std::vector<double>& h, const AcGeVector3d& start,
                                     const AcGeVector3d& end) {
  const size_t n = p.size();
  std::vector<double> diagonal(n, 1);
  std::vector<double> above(n, 0);
  std::vector<double> below(n, 0);
  std::vector<AcGeVector3d> right(n);
  const auto slope = [&](size_t i) { return (p[i + 1] - p[i]) / h[i]; };
  for (size_t i = 1; i + 1 < n; ++i) {
    below[i] = h[i - 1];
    diagonal[i] = 2 * (h[i - 1] + h[i]);
    above[i] = h[i];
    right[i] = (slope(i) - slope(i - 1)) * 6;
  }
  if (start.length() > 0) {
    diagonal[0] = 2 * h[0];
    above[0] = h[0];
    right[0] = (slope(0) - start.normal() * slope(0).length()) * 6;
  }
  if (end.length() > 0) {
    below[n - 1] = h[n - 2];
    diagonal[n - 1] = 2 * h[n - 2];
    right[n - 1] = (end.normal() * slope(n - 2).length() - slope(n - 2)) * 6;
  }
  for (size_t i = 1; i < n; ++i) {
    const double factor = below[i] / diagonal[i - 1];
    diagonal[i] -= factor * above[i - 1];
    right[i] = right[i] - right[i - 1] * factor;
  }
  std::vector<AcGeVector3d> second(n);
  second[n - 1] = right[n - 1] / diagonal[n - 1];
  for (size_t i = n - 1; i-- > 0;) {
    second[i] = (right[i] - second[i + 1] * above[i]) / diagonal[i];
  }
  return second;
}

}  // namespace

bool isCurve(const SplineCurve& curve) {
  const auto degree = static_cast<size_t>(std::max(0, curve.degree));
  const size_t count = curve.control.size();
  return curve.degree >= 1 && curve.degree <= kHighestDegree && count > degree &&
         curve.knots.size() == count + degree + 1 &&
         std::is_sorted(curve.knots.begin(), curve.knots.end()) &&
         curve.knots[count] > curve.knots[degree] &&
         (curve.weights.empty() || curve.weights.size() == count);
}

AcGePoint3d pointOf(const SplineCurve& curve, double parameter) {
  const auto degree = static_cast<size_t>(curve.degree);
  const std::vector<double>& knots = curve.knots;
  const size_t count = curve.control.size();
  const double t = std::clamp(parameter, knots[degree], knots[count]);
  // The last span that has a length and begins at or before the parameter.
  size_t span =
      static_cast<size_t>(std::upper_bound(knots.begin() + static_cast<std::ptrdiff_t>(degree),
                                           knots.begin() + static_cast<std::ptrdiff_t>(count), t) -
                          knots.begin() - 1);
  while (span > degree && !(knots[span + 1] > knots[span])) --span;
  std::vector<Homogeneous> points;
  for (size_t i = span - degree; i <= span; ++i) {
    const AcGePoint3d& p = curve.control[i];
    const double w = curve.weights.empty() ? 1 : curve.weights[i];
    points.push_back({p.x * w, p.y * w, p.z * w, w});
  }
  for (size_t round = 1; round <= degree; ++round) {
    for (size_t i = degree; i >= round; --i) {
      const double low = knots[span - degree + i];
      const double high = knots[span + 1 + i - round];
      const double share = high > low ? (t - low) / (high - low) : 0;
      points[i] = mixed(points[i - 1], points[i], share);
    }
  }
  const Homogeneous& p = points[degree];
  return p.w != 0 ? AcGePoint3d(p.x / p.w, p.y / p.w, p.z / p.w) : AcGePoint3d(p.x, p.y, p.z);
}

std::vector<AcGePoint3d> pointsAlong(const SplineCurve& curve) {
  if (!isCurve(curve)) return curve.control;
  const auto degree = static_cast<size_t>(curve.degree);
  const int pieces = curve.degree == 1 ? 1 : kPiecesOfSpan;
  std::vector<AcGePoint3d> points{pointOf(curve, curve.knots[degree])};
  for (size_t i = degree; i < curve.control.size() && points.size() < kMostPoints; ++i) {
    const double from = curve.knots[i];
    const double to = curve.knots[i + 1];
    for (int k = 1; to > from && k <= pieces; ++k) {
      points.push_back(pointOf(curve, from + (to - from) * k / pieces));
    }
  }
  return points;
}

std::vector<AcGePoint3d> pointsThrough(const std::vector<AcGePoint3d>& points,
                                       const AcGeVector3d& startTangent,
                                       const AcGeVector3d& endTangent) {
  std::vector<AcGePoint3d> p;
  for (const AcGePoint3d& point : points) {
    if (p.empty() || (point - p.back()).length() > 0) p.push_back(point);
  }
  if (p.size() < 2 || p.size() > kMostPoints) return p;
  std::vector<double> h;
  for (size_t i = 0; i + 1 < p.size(); ++i) h.push_back((p[i + 1] - p[i]).length());
  const std::vector<AcGeVector3d> second = curvatures(p, h, startTangent, endTangent);
  std::vector<AcGePoint3d> out{p.front()};
  for (size_t i = 0; i < h.size(); ++i) {
    for (int k = 1; k <= kPiecesOfSpan; ++k) {
      const double b = static_cast<double>(k) / kPiecesOfSpan;
      const double a = 1 - b;
      const AcGeVector3d bend =
          (second[i] * (a * a * a - a) + second[i + 1] * (b * b * b - b)) * (h[i] * h[i] / 6);
      out.push_back(p[i] + (p[i + 1] - p[i]) * b + bend);
    }
  }
  return out;
}

}  // namespace tarn::host
