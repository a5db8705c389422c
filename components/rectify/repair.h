// Slips of the pen among control points: exchanged axes, a zone's prefix missing or too much. Pure.
#pragma once

#include <vector>

#include "components/rectify/fit.h"
#include "components/rectify/quality.h"
#include "inc/rectification.h"

namespace tarn::rectify {

/// The fewest changes after which the Helmert residuals are less than a hundredth of what they are;
/// or a prefix that all targets lack or have too much beside the image's own place, which no
/// residual can tell. Nothing when the points fit to a thousandth of a per cent of their extent, or
/// by `otherRmse`, of another method, more than a hundred times better than by Helmert.
kel::RectifyRepair findRepair(const std::vector<PointPair>& pairs, const ImageOutline& outline,
                              double otherRmse);

}  // namespace tarn::rectify
