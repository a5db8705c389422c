// Colours of heights, from blue below to red above.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace tarn::host {

/// 0xffRRGGBB of a height; heights outside low..high have the colour of the nearer end.
inline std::uint32_t heightColor(double height, double low, double high) {
  struct Rgb {
    double red, green, blue;
  };
  constexpr std::array<Rgb, 5> kRamp = {
      {{38, 70, 200}, {30, 170, 210}, {70, 190, 80}, {240, 210, 60}, {220, 60, 40}}};
  const double part = high > low ? std::clamp((height - low) / (high - low), 0.0, 1.0) : 0.5;
  const double place = part * (kRamp.size() - 1);
  const auto index = std::min(static_cast<size_t>(place), kRamp.size() - 2);
  const double t = place - static_cast<double>(index);
  const auto mixed = [&](double Rgb::*channel) {
    return static_cast<std::uint32_t>(kRamp[index].*channel * (1 - t) +
                                      kRamp[index + 1].*channel * t + 0.5);
  };
  return 0xff000000U | mixed(&Rgb::red) << 16 | mixed(&Rgb::green) << 8 | mixed(&Rgb::blue);
}

}  // namespace tarn::host
