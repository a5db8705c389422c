// Transformations of the plane fitted to pairs of points: five methods, by least squares. Pure.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "components/raster/planemapping.h"

namespace tarn::rectify {

using raster::PlanePoint;
using raster::Slope;

/// The numbers are those of IRectifyDialog.
enum class Method { kNone = -1, kCubic, kQuadratic, kLinear, kAffine, kHelmert };

/// kNone for a number that is no method's.
Method methodOf(int index);
/// Smallest number of points; 0 for kNone.
int minimumPointCount(Method method);
/// Unknowns of both axes together.
int unknownCount(Method method);
/// 1 for linear, affine and Helmert, 2 and 3 for the polynomials; 0 for kNone.
int degreeOf(Method method);

struct PointPair {
  PlanePoint source;
  PlanePoint target;
};

/// Points less a centre, divided by a scale: of size 1, whatever the coordinates are.
struct Normaliser {
  PlanePoint centre;
  double scale = 1;

  PlanePoint to(PlanePoint p) const { return {(p.x - centre.x) / scale, (p.y - centre.y) / scale}; }
  PlanePoint from(PlanePoint p) const { return {centre.x + p.x * scale, centre.y + p.y * scale}; }
};

constexpr int kMostTerms = 10;
/// 1, x, y, x², xy, y², x³, x²y, xy², y³.
using Terms = std::array<double, kMostTerms>;
Terms termsOf(PlanePoint p);
/// 3, 6 or 10; linear and Helmert count as affine.
int termCount(Method method);

/// A fitted transformation. Its terms are of centred and scaled coordinates and are never expanded
/// into large ones, which would lose digits.
struct Fit {
  Method method = Method::kAffine;
  Normaliser source;
  Normaliser target;
  Terms u{0, 1, 0};
  Terms v{0, 0, 1};

  PlanePoint at(PlanePoint p) const;
  Slope slopeAt(PlanePoint p) const;
  /// Both of them.
  PlanePoint follow(PlanePoint p, Slope& slope) const;
};

/// What fitting gives, a fit or not.
class Solution {
 public:
  /// Empty when the points determine none: too few, not finite, without extent, or on a curve that
  /// the method cannot tell from the others (condition above 1e6).
  std::optional<Fit> fit;
  /// Of the centred and scaled design matrix; infinite when singular.
  double condition = 0;

  /// Variance of the transformed point p for points of variance 1, in X and in Y. Needs a fit.
  PlanePoint variance(PlanePoint p) const;

 private:
  friend Solution solve(Method method, const std::vector<PointPair>& pairs);
  Normaliser source_;
  Method method_ = Method::kNone;
  double count_ = 0;
  double sumXX_ = 0;
  double sumYY_ = 0;
  /// A square root of the inverse normal matrix, row by row; of the polynomials alone.
  std::vector<double> root_;
};

/// Least squares: closed forms for linear and Helmert, Householder QR with column pivoting for the
/// others, all in coordinates less their centroids and divided by the largest of them.
Solution solve(Method method, const std::vector<PointPair>& pairs);

/// Condition of the design matrix that these sources give; infinite when singular or too few.
double conditionOf(Method method, const std::vector<PlanePoint>& sources);

}  // namespace tarn::rectify
