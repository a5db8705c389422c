// Decoded pixels of a piece of one level, and who can decode them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "components/raster/remotebytes.h"

namespace tarn::raster {

class PixelPool;

/// Hands the memory of pixels on to the next tile: the first touch of new memory costs a third of
/// what decoding into it does.
struct PixelRecycler {
  std::shared_ptr<PixelPool> pool;
  size_t capacity = 0;
  void operator()(uint8_t* pixels) const;
};
using PixelMemory = std::unique_ptr<uint8_t[], PixelRecycler>;

/// `width * height` pixels of `channels` bytes (1 gray, 3 R G B), rows without gaps.
struct Tile {
  int width = 0;
  int height = 0;
  int channels = 0;
  /// Some pixel is pure black or pure white, and so means "nothing here". A reader that knows that
  /// none is says false; who keeps the tile looks where it did not.
  bool hasKeys = true;
  PixelMemory pixels;

  size_t bytes() const { return static_cast<size_t>(width) * height * channels; }
  size_t stride() const { return static_cast<size_t>(width) * channels; }
  /// Takes room for the pixels, not filled.
  void allocate(int w, int h, int c);
};

using TilePtr = std::shared_ptr<const Tile>;

/// How a level is cut into tiles. The last column and row may be narrower.
struct TileGrid {
  int width = 0;
  int height = 0;
  int tileWidth = 0;
  int tileHeight = 0;
  int channels = 0;

  // Sides go up to the largest int, so nothing may be added to them.
  int columns() const { return width / tileWidth + (width % tileWidth != 0 ? 1 : 0); }
  int rows() const { return height / tileHeight + (height % tileHeight != 0 ? 1 : 0); }
  int widthOf(int column) const;
  int heightOf(int row) const;
};

/// Where a tile stands in its grid.
struct TilePlace {
  int column = 0;
  int row = 0;
};

/// Decodes tiles of one level. Every operation may be called from several threads at once.
class TileReader {
 public:
  TileReader() = default;
  virtual ~TileReader() = default;
  TileReader(const TileReader&) = delete;
  TileReader& operator=(const TileReader&) = delete;

  virtual const TileGrid& grid() const = 0;
  /// Adds the ranges of the file that the tiles are decoded from, for bytes that are better fetched
  /// together; nothing for a file that is at hand, and what the tile cache has is left out.
  virtual void addRanges(const std::vector<TilePlace>& /*places*/,
                         std::vector<ByteRange>& /*ranges*/) const {}
  /// Decodes one tile into `out` and adds the bytes read from the file to `bytesRead`. Leaves
  /// hasKeys as it is, or false when it knows that there are none. False when the file does not
  /// hold it whole.
  virtual bool read(int column, int row, Tile& out, uint64_t& bytesRead) const = 0;
  /// True when reading a tile costs little more than copying its pixels.
  virtual bool cheap() const { return false; }
  /// True when tiles are best read one after the other, in order.
  virtual bool sequential() const { return false; }
};

/// Largest piece that is ever decoded at once, in bytes.
constexpr uint64_t kMostBlockBytes = 256ULL << 20;

/// True when some pixel of the tile is pure black or pure white.
bool findKeys(const uint8_t* pixels, size_t count, int channels);

}  // namespace tarn::raster
