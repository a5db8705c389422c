#include <gdal_priv.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "base/parallel.h"
#include "components/raster/gdalsamples.h"
#include "components/raster/tilereaders.h"

namespace tarn::raster {
namespace {

constexpr int kLeastTile = 256;
constexpr int kLeastRows = 64;
constexpr int kWidestTile = 32768;
constexpr int64_t kMostTilePixels = 4 << 20;

/// Tiles as whole blocks, several of them where blocks are small, so that no block is decoded for
/// one tile and again for its neighbour.
TileGrid chooseGrid(int width, int height, int blockWidth, int blockHeight, int channels) {
  const auto multiple = [](int block, int least) { return block * ((least + block - 1) / block); };
  TileGrid grid{width, height, multiple(blockWidth, kLeastTile), multiple(blockHeight, kLeastTile),
                channels};
  if (blockWidth >= width) {
    grid.tileWidth = std::min(width, kWidestTile);
    grid.tileHeight = multiple(blockHeight, kLeastRows);
  }
  grid.tileWidth = std::min(grid.tileWidth, width);
  grid.tileHeight = std::min(grid.tileHeight, height);
  if (static_cast<int64_t>(grid.tileWidth) * grid.tileHeight > kMostTilePixels) {
    grid.tileWidth = std::min(width, 1024);
    grid.tileHeight = std::min(height, kLeastTile);
  }
  return grid;
}

class GdalTileReader : public TileReader {
 public:
  GdalTileReader(GdalPicture picture, TileGrid grid, DatasetPtr first)
      : picture_(std::move(picture)), grid_(grid) {
    idle_.push_back(std::move(first));
  }

  const TileGrid& grid() const override { return grid_; }
  bool sequential() const override { return picture_.sequential; }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    const GdalErrors errors;
    const uint64_t before = guardedBytesRead();
    DatasetPtr dataset = borrow();
    if (!dataset) return false;
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    const PixelRect rect{column * grid_.tileWidth, row * grid_.tileHeight, out.width, out.height};
    const bool done =
        readConverted(*dataset, picture_.presentation, picture_.overview, rect, out.pixels.get()) &&
        errors.failures() == 0;
    giveBack(std::move(dataset));
    bytesRead += guardedBytesRead() - before;
    return done;
  }

 private:
  DatasetPtr borrow() const {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!idle_.empty()) {
        DatasetPtr dataset = std::move(idle_.back());
        idle_.pop_back();
        return dataset;
      }
    }
    Result<DatasetPtr> opened = picture_.image->open();
    return opened ? opened.take() : nullptr;
  }

  void giveBack(DatasetPtr dataset) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    idle_.push_back(std::move(dataset));
  }

  GdalPicture picture_;
  TileGrid grid_;
  mutable std::mutex mutex_;
  mutable std::vector<DatasetPtr> idle_;
};

}  // namespace

Result<std::unique_ptr<TileReader>> makeGdalReader(GdalPicture picture, DatasetPtr first) {
  const GdalErrors errors;
  const auto shape = shapeOf(*first, picture.presentation, picture.overview);
  if (!shape) return Status::error(picture.image->path() + ": " + shape.message());
  const PictureShape& s = shape.value();
  const TileGrid grid =
      chooseGrid(s.width, s.height, s.blockWidth, s.blockHeight, picture.presentation.channels);
  // The blocks of every thread's row of tiles: one that leaves the cache before its last tile has
  // been read is decoded again.
  const auto rows = static_cast<uint64_t>(std::max(grid.tileHeight, s.blockHeight));
  const auto columns = static_cast<uint64_t>(std::max(grid.tileWidth, s.blockWidth));
  reserveGdalCache(rows * columns * s.bytesPerPixel * workerCount());
  return std::unique_ptr<TileReader>(
      std::make_unique<GdalTileReader>(std::move(picture), grid, std::move(first)));
}

}  // namespace tarn::raster
