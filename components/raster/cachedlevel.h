// The pixels of one level of an image's own, through the tile cache.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "components/raster/mappedpart.h"
#include "components/raster/tile.h"
#include "components/raster/tilecache.h"

namespace tarn::raster {

/// Pixels [x, x + width) x [y, y + height) of a level, rows without gaps. One row more and a few
/// bytes may be read, so that loops need not treat the last ones apart.
struct PixelPatch {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  int channels = 0;
  /// As of a tile.
  bool hasKeys = false;
  PixelMemory pixels;

  size_t stride() const { return static_cast<size_t>(width) * channels; }
};

/// Reads a level's tiles through the shared cache, under the number of an image of their own. Each
/// tile is decoded once, however many threads ask for it at a time.
class CachedLevel {
 public:
  /// The reader must live as long.
  CachedLevel(const TileReader& reader, uint64_t image, uint32_t level)
      : reader_(reader), image_(image), level_(level) {}

  const TileReader& reader() const { return reader_; }
  const TileGrid& grid() const { return reader_.grid(); }

  /// Fills the patch's pixels; the rest of it says which, inside the level. False when some cannot
  /// be read.
  bool copy(PixelPatch& patch, uint64_t& bytesRead) const;
  /// As TileReader::addRanges, for the tiles under parts of the level.
  void addRanges(const std::vector<Part>& parts, std::vector<ByteRange>& ranges) const;

 private:
  TilePtr tile(int column, int row, uint64_t& bytesRead) const;
  TileKey keyOf(int column, int row) const;

  const TileReader& reader_;
  uint64_t image_;
  uint32_t level_;
  mutable std::array<std::mutex, 64> decoding_;
};

}  // namespace tarn::raster
