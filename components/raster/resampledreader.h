// A level presented on another grid: rotated, sheared or placed by control points.
#pragma once

#include <memory>

#include "components/raster/cachedlevel.h"
#include "components/raster/curvedmapping.h"
#include "components/raster/planemapping.h"

namespace tarn::raster {

struct SourceLevel {
  std::shared_ptr<const CachedLevel> pixels;
  /// Image pixels that a pixel of the level covers.
  double factorX = 1;
  double factorY = 1;
};

struct PresentedGrid {
  /// In presented pixels of full size.
  int width = 0;
  int height = 0;
  int imageWidth = 0;
  int imageHeight = 0;
  /// Of them to a pixel of the level, in both directions.
  double factor = 1;
};

/// Reads by bilinear weights, where the mapping shrinks the image the average of several points.
/// `mapping` takes presented pixels of full size to the image's. A pixel shows the image when its
/// centre lies inside; pure black and white pixels stay out of the weights, and a pixel is black
/// when they have most of it.
std::unique_ptr<TileReader> makeResampledReader(const SourceLevel& source,
                                                const PlaneMapping& mapping,
                                                const PresentedGrid& grid);

/// The same by a curved mapping, in pieces to a bounded error.
std::unique_ptr<TileReader> makeCurvedReader(const SourceLevel& source,
                                             std::shared_ptr<const CurvedMapping> mapping,
                                             const PresentedGrid& grid);

}  // namespace tarn::raster
