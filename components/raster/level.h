// One resolution of an image.
#pragma once

#include <memory>

#include "components/raster/tile.h"

namespace tarn::raster {

struct Level {
  std::unique_ptr<TileReader> reader;
  /// Image pixels that a pixel of the level covers.
  double factorX = 1;
  double factorY = 1;
  /// Image position of the outer corner of the level's first pixel; less than 0 where the first
  /// pixel stands for less than a whole one (images shown mirrored).
  double originX = 0;
  double originY = 0;
};

}  // namespace tarn::raster
