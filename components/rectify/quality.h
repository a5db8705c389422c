// How good a fit is: residuals, status, which point is suspect. Pure.
#pragma once

#include <vector>

#include "components/rectify/fit.h"
#include "inc/rectification.h"

namespace tarn::rectify {

/// Residual T(source) - target.
struct Residual {
  double dx = 0;
  double dy = 0;

  double length() const;
};

/// The image among the sources: its corners, and places spread over it row by row (its outline
/// included), where the transformation is looked at for folds.
struct ImageOutline {
  std::vector<PlanePoint> corners;
  std::vector<PlanePoint> lattice;

  /// A rectangle, for points without an image.
  static ImageOutline around(const std::vector<PointPair>& pairs);
  static ImageOutline rectangle(PlanePoint low, PlanePoint high);
};

/// Places a side of a lattice.
constexpr int kLatticeSide = 33;

struct Assessment {
  /// Without a fit when the status is 1.
  Solution solution;
  /// One a pair; not numbers without a fit.
  std::vector<Residual> residuals;
  kel::RectifyQuality quality;
};

/// Fits and judges. Status 1: too few points, a number that is not finite, sources or targets
/// without extent, condition above 1e6. Status 2: condition above 1e4, one unit of picking error
/// grows more than a hundredfold in an image corner, or the image folds.
Assessment assess(Method method, const std::vector<PointPair>& pairs, const ImageOutline& outline);

}  // namespace tarn::rectify
