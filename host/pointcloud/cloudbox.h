// Small sums with boxes of cloud coordinates.
#pragma once

#include <algorithm>
#include <limits>

#include "acgipointcloud.h"

namespace tarn::host {

using CloudBox = AcGiPointCloud::Box;

/// A box that holds nothing.
constexpr CloudBox emptyCloudBox() {
  constexpr double kFar = std::numeric_limits<double>::max();
  return {kFar, kFar, -kFar, -kFar};
}

inline void addTo(CloudBox& box, double x, double y) {
  box.minX = std::min(box.minX, x);
  box.minY = std::min(box.minY, y);
  box.maxX = std::max(box.maxX, x);
  box.maxY = std::max(box.maxY, y);
}

inline bool contains(const CloudBox& outer, const CloudBox& inner) {
  return outer.minX <= inner.minX && outer.minY <= inner.minY && outer.maxX >= inner.maxX &&
         outer.maxY >= inner.maxY;
}

inline bool overlap(const CloudBox& a, const CloudBox& b) {
  return a.minX <= b.maxX && a.maxX >= b.minX && a.minY <= b.maxY && a.maxY >= b.minY;
}

}  // namespace tarn::host
