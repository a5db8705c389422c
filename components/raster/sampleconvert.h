// Samples of an image to gray or RGB bytes: inner loops, no files.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "components/raster/presentation.h"

namespace tarn::raster {

/// A run of pixels, each band for itself, as numbers of the presentation's sample type.
struct SampleView {
  size_t pixels = 0;
  /// As many as the presentation has bands.
  std::array<const void*, 4> bands{};
  /// Null without an alpha band.
  const void* alpha = nullptr;
  /// One byte a pixel; null without a mask.
  const uint8_t* mask = nullptr;
};

/// Writes `channels` bytes a pixel. Pixels that the alpha band, the mask, nodata or a number that
/// is none (infinite, beyond 1e37) says are not there become black; so do scaled unsigned ones
/// that are 0 in all bands, and those at the top of all bands become white, unless black and white
/// are kept as content.
void convertSamples(const Presentation& presentation, const SampleView& view, uint8_t* out);

/// Divides the unsigned samples of a band, multiplied by alpha, by it.
void divideByAlpha(const Presentation& presentation, const void* alpha, size_t pixels, void* band);

/// Whether samples can have been multiplied by alpha.
struct AlphaSigns {
  /// Some alpha is neither 0 nor full.
  bool partial = false;
  /// Some sample is larger than its alpha, so none is multiplied.
  bool exceeded = false;
};
void lookAtAlpha(const Presentation& presentation, const SampleView& view, AlphaSigns& signs);

/// Appends the samples of every `step`th pixel that is content.
void collectContent(const Presentation& presentation, const SampleView& view, size_t step,
                    std::vector<double>& out);

}  // namespace tarn::raster
