// A made-up countryside seen from above, as a function of the ground position.
#pragma once

#include <cstdint>

namespace tarn::ortho {

struct Rgb {
  float r = 0;
  float g = 0;
  float b = 0;
};

/// Colour (0..255 a channel) at a place in metres, x to the east and y to the north, before sensor
/// noise. The same place always has the same colour; any extent may be asked for.
Rgb sceneColor(double x, double y);

/// Even noise in [0, 1) from two whole numbers and a seed.
float hashNoise(int32_t x, int32_t y, uint32_t seed);

}  // namespace tarn::ortho
