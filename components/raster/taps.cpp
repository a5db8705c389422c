#include "components/raster/taps.h"

#include <algorithm>
#include <cmath>

namespace tarn::raster {
namespace {

// A pixel that a cell covers by less than this part of a pixel does not take part: it is the trace
// of a rounding error, and would cost a whole tile at a tile's edge.
constexpr double kLeastCover = 1e-5;

int clampedPixel(double position, int pixels) {
  return static_cast<int>(std::clamp(std::floor(position), 0.0, pixels - 1.0));
}

/// First cell whose centre is at or behind `position`.
int cellAt(const AxisWindow& w, double position) {
  const double cell = std::ceil((position - w.origin) / w.cell - 0.5);
  return static_cast<int>(std::clamp(cell, 0.0, static_cast<double>(w.cells)));
}

struct Span1D {
  double from;
  double to;
};

Span1D coverOf(const AxisWindow& w, int index) {
  const double from = w.origin + index * w.cell;
  return {std::max(from, w.begin), std::min(from + w.cell, w.extent)};
}

void addBox(const AxisWindow& w, int index, AxisTaps& taps) {
  const Span1D cover = coverOf(w, index);
  int from = clampedPixel(cover.from + kLeastCover, w.pixels);
  float* weights = taps.weights.data() + static_cast<size_t>(index - taps.first) * taps.width;
  double sum = 0;
  for (int i = 0; i < taps.width && from + i < w.pixels; ++i) {
    const double overlap =
        std::min<double>(cover.to, from + i + 1) - std::max<double>(cover.from, from + i);
    if (overlap < kLeastCover) continue;
    weights[i] = static_cast<float>(overlap);
    sum += overlap;
  }
  if (sum <= 0) weights[0] = 1, sum = 1;
  for (int i = 0; i < taps.width; ++i) weights[i] = static_cast<float>(weights[i] / sum);
  taps.start[index - taps.first] = from;
}

void addPoint(const AxisWindow& w, int index, Filter filter, AxisTaps& taps) {
  const double centre = w.origin + (index + 0.5) * w.cell;
  float* weights = taps.weights.data() + static_cast<size_t>(index - taps.first) * taps.width;
  if (filter == Filter::kNearest) {
    weights[0] = 1;
    taps.start[index - taps.first] = clampedPixel(centre, w.pixels);
    return;
  }
  const double left = std::clamp(centre - 0.5, 0.0, w.pixels - 1.0);
  const int from = clampedPixel(left, w.pixels);
  const auto share = static_cast<float>(left - from);
  weights[0] = from + 1 < w.pixels ? 1 - share : 1;
  weights[1] = from + 1 < w.pixels ? share : 0;
  taps.start[index - taps.first] = from;
}

}  // namespace

AxisTaps makeTaps(const AxisWindow& w, Filter filter) {
  AxisTaps taps;
  taps.first = cellAt(w, w.begin);
  taps.last = std::max(taps.first, cellAt(w, w.extent));
  taps.width = filter == Filter::kNearest    ? 1
               : filter == Filter::kBilinear ? 2
                                             : static_cast<int>(std::min(w.cell, w.extent)) + 2;
  taps.start.resize(taps.cells());
  taps.weights.assign(static_cast<size_t>(taps.cells()) * taps.width, 0.0F);
  for (int i = taps.first; i < taps.last; ++i) {
    if (filter == Filter::kBox) {
      addBox(w, i, taps);
    } else {
      addPoint(w, i, filter, taps);
    }
  }
  return sliceTaps(taps, 0, w.cells);
}

AxisTaps sliceTaps(const AxisTaps& taps, int from, int to) {
  AxisTaps out;
  out.first = std::clamp(from, taps.first, taps.last);
  out.last = std::clamp(to, out.first, taps.last);
  const int skip = out.first - taps.first;
  int used = 1;
  for (int i = 0; i < out.cells(); ++i) {
    const float* weights = taps.weightsOf(skip + i);
    for (int k = used; k < taps.width; ++k) {
      if (weights[k] > 0) used = k + 1;
    }
  }
  out.width = used;
  for (int i = 0; i < out.cells(); ++i) {
    const int start = taps.start[skip + i];
    const float* weights = taps.weightsOf(skip + i);
    out.start.push_back(start);
    out.weights.insert(out.weights.end(), weights, weights + used);
    int count = used;
    while (count > 1 && weights[count - 1] == 0) --count;
    out.pixelBegin = i == 0 ? start : std::min(out.pixelBegin, start);
    out.pixelEnd = i == 0 ? start + count : std::max(out.pixelEnd, start + count);
  }
  return out;
}

}  // namespace tarn::raster
