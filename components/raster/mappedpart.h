// Rectangles of a grid and of what they are filled from.
#pragma once

#include <cstdint>

#include "components/raster/planemapping.h"

namespace tarn::raster {

/// A rectangle of pixels.
struct Part {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool isEmpty() const { return width <= 0 || height <= 0; }
  int64_t pixels() const { return static_cast<int64_t>(width) * height; }
};

/// The pixels of a picture of that size that a part of the grid may need, with a rim for bilinear
/// weights; empty when it lies outside.
Part sourceOf(const PlaneMapping& mapping, int width, int height, const Part& part);

}  // namespace tarn::raster
