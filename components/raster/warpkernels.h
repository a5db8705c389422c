// Inner loops of presenting an image on another grid.
#pragma once

#include <cstddef>
#include <cstdint>

#include "components/raster/bilinear.h"
#include "components/raster/cachedlevel.h"
#include "components/raster/planemapping.h"

namespace tarn::raster {

/// The part of the level that counts as image, and on which side the mapping is the image's own.
struct LevelExtent {
  double width = 0;
  double height = 0;
  double orientation = 1;
};

/// Works out `count` positions from the point `first` of the mapped row on, `step` apart. Positions
/// stay in the patch.
void locateRow(const PlaneMapping::Row& row, double first, double step, int count,
               const LevelExtent& extent, const PixelPatch& patch, const RowSources& out);

/// Longest side of a patch in which locateInside finds positions to a 256th of a pixel.
constexpr int kLongestInside = 4096;
/// The same where every position lies in the image and in the patch; leaves `inside` alone.
void locateInside(const PlaneMapping::Row& row, double first, double step, int count,
                  const PixelPatch& patch, const RowSources& out);

/// The same for `count` given positions in the level; those outside of it are not inside.
void locatePoints(const PlanePoint* points, int count, const LevelExtent& extent,
                  const PixelPatch& patch, const RowSources& out);

/// Bilinear, without pure black and white pixels: where they have more than half of the weight the
/// result is black, and it never is pure black or white elsewhere. Black outside the image.
void sampleRow(const PixelPatch& patch, const RowSources& from, int count, uint8_t* out);

/// Averages of `n * n` pixels each of a row of `count` pixels, in the same way; `rows` has n rows
/// of n * count pixels.
void averageRows(const uint8_t* rows, int n, int count, int channels, uint8_t* out);

}  // namespace tarn::raster
