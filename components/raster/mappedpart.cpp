#include "components/raster/mappedpart.h"

#include <algorithm>
#include <cmath>

namespace tarn::raster {

Part sourceOf(const PlaneMapping& mapping, int width, int height, const Part& part) {
  const int steps = mapping.isAffine() ? 1 : 8;
  PlanePoint low{HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL};
  for (int j = 0; j <= steps; ++j) {
    for (int i = 0; i <= steps; ++i) {
      const PlanePoint p = mapping.at(part.x + static_cast<double>(part.width) * i / steps,
                                      part.y + static_cast<double>(part.height) * j / steps);
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
  }
  const double slack =
      1 + mapping.bend(static_cast<double>(std::max(part.width, part.height)) / steps);
  const auto pixel = [](double position, int count) {
    return static_cast<int>(std::clamp(std::floor(position), 0.0, static_cast<double>(count)));
  };
  Part patch;
  patch.x = pixel(low.x - slack, width);
  patch.y = pixel(low.y - slack, height);
  const int right = pixel(high.x + slack + 1, width);
  const int bottom = pixel(high.y + slack + 1, height);
  if (right > patch.x && bottom > patch.y) {
    patch.width = right - patch.x;
    patch.height = bottom - patch.y;
  }
  return patch;
}

}  // namespace tarn::raster
