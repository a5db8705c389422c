// An image cut into tiles and halved level by level, in one pass over its pixels.
#pragma once

#include <cstdint>

#include "base/result.h"
#include "components/raster/progress.h"
#include "components/raster/tile.h"

namespace tarn::raster {

/// What takes the tiles. Called by several threads at once and in any order, once a tile.
class TileSink {
 public:
  TileSink() = default;
  virtual ~TileSink() = default;
  TileSink(const TileSink&) = delete;
  TileSink& operator=(const TileSink&) = delete;

  /// `pixels` is a whole tile of kPyramidTile squared pixels; beyond the picture's edge its last
  /// column and row are repeated.
  virtual Status writeTile(size_t level, int column, int row, const uint8_t* pixels) = 0;
};

struct CascadeForm {
  /// Level 0 is the image itself and its halves follow; else the first half is level 0.
  bool withImage = false;
  /// All halves down to one tile.
  bool withHalves = true;
  /// Lines stay however thin they are.
  bool thinLines = false;
};

/// Reads the image once and hands every tile to the sink. Uses all processors; memory is about 0.4
/// kB a column of the image and a few MB. Fails when pixels cannot be read (a sentence without the
/// file), with the sink's failure, or when `progress` stops it.
Status cascadeTiles(const TileReader& source, const CascadeForm& form, TileSink& sink,
                    const Progress& progress);

}  // namespace tarn::raster
