// Inner loops of presenting an image on another grid.
#pragma once

#include <cstddef>
#include <cstdint>

#include "components/raster/cachedlevel.h"
#include "components/raster/planemapping.h"

namespace tarn::raster {

/// Where the pixels of one row come from: positions in the patch, in 256ths of a pixel, those of
/// the upper left of the four pixels around each, and whether there is an image at all.
struct RowSources {
  int32_t* x = nullptr;
  int32_t* y = nullptr;
  uint8_t* inside = nullptr;
};

/// The part of the level that counts as image, and on which side the mapping is the image's own.
struct LevelExtent {
  double width = 0;
  double height = 0;
  double orientation = 1;
};

/// Works out `count` positions from the point `first` of the mapped row on, `step` apart. Positions
/// stay in the patch. Returns how many are inside the image.
int locateRow(const PlaneMapping::Row& row, double first, double step, int count,
              const LevelExtent& extent, const PixelPatch& patch, const RowSources& out);

/// Bilinear, without pure black and white pixels: where they have more than half of the weight the
/// result is black, and it never is pure black or white elsewhere. Black outside the image.
void sampleRow(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out);

/// Averages of `n * n` pixels each of a row of `count` pixels, in the same way; `rows` has n rows
/// of n * count pixels.
void averageRows(const uint8_t* rows, int n, int count, int channels, uint8_t* out);

}  // namespace tarn::raster
