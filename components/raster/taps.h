// Which pixels of a level make up each cell of a window, along one axis. Pure.
#pragma once

#include <cstddef>
#include <vector>

namespace tarn::raster {

enum class Filter { kNearest, kBox, kBilinear };

/// For every cell inside the image, `width` neighbouring pixels from `start` with weights that sum
/// to 1; taps behind the last pixel have the weight 0.
struct AxisTaps {
  /// Cells [first, last) of the window have their centre inside the image.
  int first = 0;
  int last = 0;
  int width = 1;
  std::vector<int> start;
  std::vector<float> weights;
  /// Pixels [pixelBegin, pixelEnd) take part.
  int pixelBegin = 0;
  int pixelEnd = 0;

  int cells() const { return last - first; }
  const float* weightsOf(int i) const { return weights.data() + static_cast<size_t>(i) * width; }
};

/// Along one axis: cell i covers [origin + i * cell, origin + (i + 1) * cell) in pixels of the
/// level, which has `pixels` pixels of which the image covers [begin, extent) (the first and the
/// last pixel may stand for less than a whole one).
struct AxisWindow {
  double origin = 0;
  double cell = 1;
  int cells = 0;
  double extent = 0;
  int pixels = 0;
  double begin = 0;
};

AxisTaps makeTaps(const AxisWindow& window, Filter filter);

/// The taps of cells [from, to) of the window alone (cells counted from the window's start).
AxisTaps sliceTaps(const AxisTaps& taps, int from, int to);

}  // namespace tarn::raster
