#include "components/raster/turnedreader.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarn::raster {
namespace {

constexpr int kTile = 256;

template <int kChannels>
void copyTurned(const uint8_t* first, ptrdiff_t right, ptrdiff_t down, Tile& out) {
  uint8_t* target = out.pixels.get();
  for (int y = 0; y < out.height; ++y) {
    const uint8_t* source = first + y * down;
    for (int x = 0; x < out.width; ++x, source += right, target += kChannels) {
      for (int c = 0; c < kChannels; ++c) target[c] = source[c];
    }
  }
}

class TurnedReader : public TileReader {
 public:
  TurnedReader(std::shared_ptr<const CachedLevel> source, Turn turn)
      : source_(std::move(source)), turn_(turn) {
    const TileGrid& own = source_->grid();
    grid_ = turn.transposed ? TileGrid{own.height, own.width, 0, 0, own.channels}
                            : TileGrid{own.width, own.height, 0, 0, own.channels};
    grid_.tileWidth = std::min(kTile, grid_.width);
    grid_.tileHeight = std::min(kTile, grid_.height);
  }

  const TileGrid& grid() const override { return grid_; }
  bool sequential() const override { return source_->reader().sequential(); }

  void addRanges(const std::vector<TilePlace>& places,
                 std::vector<ByteRange>& ranges) const override {
    std::vector<Part> parts;
    for (const TilePlace& place : places) parts.push_back(sourceOf(place.column, place.row));
    source_->addRanges(parts, ranges);
  }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    const Part part = sourceOf(column, row);
    PixelPatch patch;
    patch.x = part.x;
    patch.y = part.y;
    patch.width = part.width;
    patch.height = part.height;
    if (!source_->copy(patch, bytesRead)) return false;

    // Steps in the patch for one column and one row of the image, then of the tile.
    const auto stride = static_cast<ptrdiff_t>(patch.stride());
    const uint8_t* first = patch.pixels.get();
    ptrdiff_t right = patch.channels, down = stride;
    if (turn_.mirroredColumns) {
      first += right * (patch.width - 1);
      right = -right;
    }
    if (turn_.mirroredRows) {
      first += down * (patch.height - 1);
      down = -down;
    }
    if (turn_.transposed) std::swap(right, down);
    out.hasKeys = patch.hasKeys;
    (grid_.channels == 1 ? copyTurned<1> : copyTurned<3>)(first, right, down, out);
    return true;
  }

 private:
  /// The pixels of the level that make a tile.
  Part sourceOf(int column, int row) const {
    Part part{column * grid_.tileWidth, row * grid_.tileHeight, grid_.widthOf(column),
              grid_.heightOf(row)};
    if (turn_.transposed) {
      std::swap(part.x, part.y);
      std::swap(part.width, part.height);
    }
    const TileGrid& own = source_->grid();
    if (turn_.mirroredColumns) part.x = own.width - part.x - part.width;
    if (turn_.mirroredRows) part.y = own.height - part.y - part.height;
    return part;
  }

  std::shared_ptr<const CachedLevel> source_;
  Turn turn_;
  TileGrid grid_;
};

}  // namespace

std::unique_ptr<TileReader> makeTurnedReader(std::shared_ptr<const CachedLevel> source, Turn turn) {
  return std::make_unique<TurnedReader>(std::move(source), turn);
}

}  // namespace tarn::raster
