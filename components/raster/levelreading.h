// Any window of an image from its levels: the right level, through the tile cache, resampled.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/level.h"

namespace tarn::raster {

/// A window on the image: `columns * rows` cells of `cellX * cellY` image pixels, the first with
/// its upper left corner at image pixel (x, y). The image covers [0, width) x [0, height).
struct Window {
  double x = 0;
  double y = 0;
  double cellX = 1;
  double cellY = 1;
  int columns = 0;
  int rows = 0;
};

struct ReadCounts {
  uint64_t pixels = 0;
  uint64_t bytes = 0;
  uint64_t tilesRead = 0;
  uint64_t tilesCached = 0;
};

/// The levels of one image, the full size first, as they are shown.
struct LevelView {
  const std::vector<Level>& levels;
  /// Its number in the tile cache.
  uint64_t image = 0;
  int width = 0;
  int height = 0;
  /// As in Presentation.
  bool thinLines = false;
  /// Where the tiles come from, when that is far away.
  const RemoteBytes* remote = nullptr;
};

/// As RasterImage::read; `path` is named when it fails.
Status readWindow(const LevelView& view, const std::string& path, const Window& window, bool smooth,
                  uint8_t* out, ReadCounts& counts);

/// As RasterImage::rangesOf.
std::vector<ByteRange> rangesOfWindow(const LevelView& view, const Window& window, bool smooth);

}  // namespace tarn::raster
