// Why points determine no transformation or a weak one, and where more of them would help. Pure.
#pragma once

#include <vector>

#include "components/rectify/fit.h"
#include "components/rectify/quality.h"
#include "inc/rectification.h"

namespace tarn::rectify {

/// What is wrong with the places of the sources; kNone when nothing is. `points` are the rows
/// meant.
struct PlaceFault {
  kel::RectifyFault fault = kel::RectifyFault::kNone;
  std::vector<int> points;
  /// The rows on each line, when they lie on lines.
  std::vector<std::vector<int>> lines;
  /// For too few places: how many the method needs, how many there are.
  int needed = 0;
  int there = 0;
};

/// For sources whose design matrix is singular or nearly (condition above 1e4).
PlaceFault explainSources(Method method, const std::vector<PlanePoint>& sources);

/// Up to three places in the outline where one point each makes the fit strong, in the order in
/// which they should be taken.
std::vector<PlanePoint> suggestPlaces(Method method, const std::vector<PlanePoint>& sources,
                                      const ImageOutline& outline);

/// The rows whose targets lie a thousand times as far from the middle one as half of them do.
std::vector<int> farTargets(const std::vector<PointPair>& pairs);

}  // namespace tarn::rectify
