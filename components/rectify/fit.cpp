#include "components/rectify/fit.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>

namespace tarn::rectify {
namespace {

constexpr double kWorstCondition = 1e6;
constexpr double kInfinite = std::numeric_limits<double>::infinity();

bool areFinite(const std::vector<PointPair>& pairs) {
  return std::all_of(pairs.begin(), pairs.end(), [](const PointPair& p) {
    return std::isfinite(p.source.x) && std::isfinite(p.source.y) && std::isfinite(p.target.x) &&
           std::isfinite(p.target.y);
  });
}

/// Divided before it is added: finite coordinates keep a finite centre.
template <typename Points, typename Get>
Normaliser normaliserOf(const Points& points, Get get) {
  Normaliser result;
  const double share = 1.0 / static_cast<double>(points.size());
  // Sums of what differs from the first point: no digit of large coordinates is lost.
  const PlanePoint first = get(points[0]);
  PlanePoint mean;
  for (const auto& p : points) {
    mean.x += (get(p).x - first.x) * share;
    mean.y += (get(p).y - first.y) * share;
  }
  result.centre = {first.x + mean.x, first.y + mean.y};
  double largest = 0;
  for (const auto& p : points) {
    largest = std::max(
        {largest, std::fabs(get(p).x - result.centre.x), std::fabs(get(p).y - result.centre.y)});
  }
  result.scale = largest;
  return result;
}

Eigen::MatrixXd designOf(const std::vector<PlanePoint>& normalised, int terms) {
  Eigen::MatrixXd design(static_cast<Eigen::Index>(normalised.size()), terms);
  for (size_t i = 0; i < normalised.size(); ++i) {
    const Terms t = termsOf(normalised[i]);
    for (int k = 0; k < terms; ++k) design(static_cast<Eigen::Index>(i), k) = t[k];
  }
  return design;
}

double conditionOf(const Eigen::MatrixXd& triangle) {
  const Eigen::VectorXd values = Eigen::JacobiSVD<Eigen::MatrixXd>(triangle).singularValues();
  const double least = values(values.size() - 1), most = values(0);
  // What rounding leaves of a singular matrix counts as nothing.
  constexpr double kNothing = 1e-14;
  return least > kNothing * most ? most / least : kInfinite;
}

double ratioOf(double a, double b) {
  return a > 0 && b > 0 ? std::max(a / b, b / a) : kInfinite;
}

struct Sums {
  double xx = 0, yy = 0, xX = 0, yY = 0, xY = 0, yX = 0;
};

Sums sumsOf(const std::vector<PlanePoint>& p, const std::vector<PlanePoint>& q) {
  Sums s;
  for (size_t i = 0; i < p.size(); ++i) {
    s.xx += p[i].x * p[i].x;
    s.yy += p[i].y * p[i].y;
    s.xX += p[i].x * q[i].x;
    s.yY += p[i].y * q[i].y;
    s.xY += p[i].x * q[i].y;
    s.yX += p[i].y * q[i].x;
  }
  return s;
}

double closedCondition(Method method, double n, double xx, double yy) {
  if (method == Method::kHelmert) return ratioOf(std::sqrt(n), std::sqrt(xx + yy));
  return std::max(ratioOf(std::sqrt(n), std::sqrt(xx)), ratioOf(std::sqrt(n), std::sqrt(yy)));
}

bool isClosed(Method method) {
  return method == Method::kLinear || method == Method::kHelmert;
}

}  // namespace

Method methodOf(int index) {
  return index >= 0 && index <= 4 ? static_cast<Method>(index) : Method::kNone;
}

int minimumPointCount(Method method) {
  constexpr int kCounts[] = {10, 6, 2, 3, 2};
  return method == Method::kNone ? 0 : kCounts[static_cast<int>(method)];
}

int unknownCount(Method method) {
  return 2 * minimumPointCount(method);
}

int degreeOf(Method method) {
  constexpr int kDegrees[] = {3, 2, 1, 1, 1};
  return method == Method::kNone ? 0 : kDegrees[static_cast<int>(method)];
}

int termCount(Method method) {
  const int degree = degreeOf(method);
  return (degree + 1) * (degree + 2) / 2;
}

Terms termsOf(PlanePoint p) {
  const double x = p.x, y = p.y;
  return {1, x, y, x * x, x * y, y * y, x * x * x, x * x * y, x * y * y, y * y * y};
}

PlanePoint Fit::at(PlanePoint p) const {
  const Terms t = termsOf(source.to(p));
  const int count = termCount(method);
  PlanePoint sum;
  for (int k = 0; k < count; ++k) {
    sum.x += u[k] * t[k];
    sum.y += v[k] * t[k];
  }
  return target.from(sum);
}

Slope Fit::slopeAt(PlanePoint p) const {
  Slope slope;
  follow(p, slope);
  return slope;
}

PlanePoint Fit::follow(PlanePoint p, Slope& slope) const {
  const PlanePoint n = source.to(p);
  const double x = n.x, y = n.y, scale = target.scale / source.scale;
  const int degree = degreeOf(method);
  const auto along = [&](const Terms& c, double& byX, double& byY) {
    double value = c[0] + c[1] * x + c[2] * y;
    byX = c[1];
    byY = c[2];
    if (degree > 1) {
      value += (c[3] * x + c[4] * y) * x + c[5] * y * y;
      byX += 2 * c[3] * x + c[4] * y;
      byY += c[4] * x + 2 * c[5] * y;
    }
    if (degree > 2) {
      value += ((c[6] * x + c[7] * y) * x + c[8] * y * y) * x + c[9] * y * y * y;
      byX += (3 * c[6] * x + 2 * c[7] * y) * x + c[8] * y * y;
      byY += (c[7] * x + 2 * c[8] * y) * x + 3 * c[9] * y * y;
    }
    byX *= scale;
    byY *= scale;
    return value;
  };
  const double u0 = along(u, slope.ux, slope.uy);
  return target.from({u0, along(v, slope.vx, slope.vy)});
}

PlanePoint Solution::variance(PlanePoint p) const {
  const PlanePoint n = source_.to(p);
  if (method_ == Method::kHelmert) {
    const double both = 1 / count_ + (n.x * n.x + n.y * n.y) / (sumXX_ + sumYY_);
    return {both, both};
  }
  if (method_ == Method::kLinear)
    return {1 / count_ + n.x * n.x / sumXX_, 1 / count_ + n.y * n.y / sumYY_};
  const Terms t = termsOf(n);
  const int terms = termCount(method_);
  double sum = 0;
  for (int column = 0; column < terms; ++column) {
    double part = 0;
    for (int row = 0; row < terms; ++row)
      part += root_[static_cast<size_t>(row) * terms + column] * t[row];
    sum += part * part;
  }
  return {sum, sum};
}

double conditionOf(Method method, const std::vector<PlanePoint>& sources) {
  if (static_cast<int>(sources.size()) < std::max(1, minimumPointCount(method))) return kInfinite;
  const Normaliser normaliser = normaliserOf(sources, [](const PlanePoint& p) { return p; });
  if (!(normaliser.scale > 0)) return kInfinite;
  std::vector<PlanePoint> points;
  points.reserve(sources.size());
  for (const PlanePoint& p : sources) points.push_back(normaliser.to(p));
  if (isClosed(method)) {
    const Sums s = sumsOf(points, points);
    return closedCondition(method, static_cast<double>(points.size()), s.xx, s.yy);
  }
  const int terms = termCount(method);
  const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(designOf(points, terms));
  return conditionOf(Eigen::MatrixXd(qr.matrixR().topRows(terms).triangularView<Eigen::Upper>()));
}

Solution solve(Method method, const std::vector<PointPair>& pairs) {
  Solution result;
  result.condition = kInfinite;
  if (method == Method::kNone || static_cast<int>(pairs.size()) < minimumPointCount(method) ||
      !areFinite(pairs))
    return result;
  Fit fit;
  fit.method = method;
  fit.source = normaliserOf(pairs, [](const PointPair& p) { return p.source; });
  fit.target = normaliserOf(pairs, [](const PointPair& p) { return p.target; });
  if (!(fit.source.scale > 0) || !(fit.target.scale > 0) || !std::isfinite(fit.source.scale) ||
      !std::isfinite(fit.target.scale))
    return result;
  std::vector<PlanePoint> p, q;
  for (const PointPair& pair : pairs) {
    p.push_back(fit.source.to(pair.source));
    q.push_back(fit.target.to(pair.target));
  }
  const auto n = static_cast<double>(pairs.size());
  result.source_ = fit.source;
  result.method_ = method;
  result.count_ = n;
  fit.u = fit.v = {};
  if (isClosed(method)) {
    const Sums s = sumsOf(p, q);
    result.condition = closedCondition(method, n, s.xx, s.yy);
    if (result.condition > kWorstCondition) return result;
    result.sumXX_ = s.xx;
    result.sumYY_ = s.yy;
    if (method == Method::kLinear) {
      fit.u[1] = s.xX / s.xx;
      fit.v[2] = s.yY / s.yy;
    } else {
      const double a = (s.xX + s.yY) / (s.xx + s.yy), b = (s.xY - s.yX) / (s.xx + s.yy);
      fit.u[1] = fit.v[2] = a;
      fit.u[2] = -b;
      fit.v[1] = b;
    }
    result.fit = fit;
    return result;
  }

  const int terms = termCount(method);
  const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(designOf(p, terms));
  const Eigen::MatrixXd triangle = qr.matrixR().topRows(terms).triangularView<Eigen::Upper>();
  result.condition = conditionOf(triangle);
  if (!(result.condition <= kWorstCondition)) return result;
  Eigen::MatrixXd targets(static_cast<Eigen::Index>(q.size()), 2);
  for (size_t i = 0; i < q.size(); ++i) {
    targets(static_cast<Eigen::Index>(i), 0) = q[i].x;
    targets(static_cast<Eigen::Index>(i), 1) = q[i].y;
  }
  const Eigen::MatrixXd solved = qr.solve(targets);
  for (int k = 0; k < terms; ++k) {
    fit.u[k] = solved(k, 0);
    fit.v[k] = solved(k, 1);
  }
  const Eigen::MatrixXd root = qr.colsPermutation() * triangle.triangularView<Eigen::Upper>().solve(
                                                          Eigen::MatrixXd::Identity(terms, terms));
  result.root_.resize(static_cast<size_t>(terms) * terms);
  for (int row = 0; row < terms; ++row)
    for (int column = 0; column < terms; ++column)
      result.root_[static_cast<size_t>(row) * terms + column] = root(row, column);
  result.fit = fit;
  return result;
}

}  // namespace tarn::rectify
