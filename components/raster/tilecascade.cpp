// Bands of rows become the tiles of the image and of its first half, and every tile leaves its half
// in a tile of the next level as soon as it is complete.
#include "components/raster/tilecascade.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "base/parallel.h"
#include "components/raster/halving.h"
#include "components/raster/pyramidfile.h"

namespace tarn::raster {
namespace {

constexpr int kBand = 2 * kPyramidTile;

class Cascade {
 public:
  Cascade(const TileReader& source, const CascadeForm& form, TileSink& sink,
          const Progress& progress)
      : source_(source),
        grid_(source.grid()),
        withImage_(form.withImage),
        leastContent_(form.thinLines ? 1 : 2),
        sink_(sink),
        progress_(progress),
        caller_(std::this_thread::get_id()) {
    if (form.withHalves) sizes_ = pyramidLevels(grid_.width, grid_.height);
    for (size_t level = 1; level < sizes_.size(); ++level) {
      Row row;
      row.tiles.resize(tilesIn(sizes_[level].width) * tileBytes());
      row.keys.resize(tilesIn(sizes_[level].width));
      rows_.push_back(std::move(row));
    }
    groupWidth_ = std::max(kBand, grid_.tileWidth);
    // Tiles that fit the bands are decoded by the worker that needs them; others are shared.
    local_ = !source_.sequential() && groupWidth_ % grid_.tileWidth == 0 &&
             groupWidth_ % kBand == 0 && kBand % grid_.tileHeight == 0;
    if (!local_) groupWidth_ = kBand;
  }

  Status run() {
    const int bands = (grid_.height - 1) / kBand + 1;
    bandPart_ = 1.0 / bands;
    for (int band = 0; band < bands; ++band) {
      const double from = band * bandPart_;
      if (!local_) decodeBand(band, from);
      const size_t groups = (static_cast<size_t>(grid_.width) + groupWidth_ - 1) / groupWidth_;
      const double start = local_ ? 0 : kDecodeShare;
      std::atomic<size_t> done{0};
      parallelFor(groups, [&](size_t group) {
        if (!failed()) makeGroup(static_cast<int>(group), band);
        tell(from + bandPart_ * (start + (1 - start) * static_cast<double>(++done) /
                                             static_cast<double>(groups)));
      });
      finishRows(1, band);
      // Another thread may have done the last group; the end of the band is told all the same.
      tell(static_cast<double>(band + 1) / bands);
      if (failed()) return failure_;
    }
    return Status::ok();
  }

 private:
  /// One row of tiles of a level above the first, filled from below.
  struct Row {
    std::vector<uint8_t> tiles;
    std::vector<char> keys;
  };

  // Of the time of a band whose tiles are decoded beforehand.
  static constexpr double kDecodeShare = 0.6;

  static size_t tilesIn(int pixels) {
    return (static_cast<size_t>(pixels) + kPyramidTile - 1) / kPyramidTile;
  }
  size_t tileStride() const { return static_cast<size_t>(kPyramidTile) * grid_.channels; }
  size_t tileBytes() const { return tileStride() * kPyramidTile; }
  static int pixelsIn(int size, int tile) {
    return std::min(kPyramidTile, size - tile * kPyramidTile);
  }

  bool failed() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return !failure_.isOk();
  }
  void fail(const Status& status) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (failure_.isOk()) failure_ = status;
  }

  /// Progress is told on the caller's thread alone, and only when there is some.
  void tell(double part) {
    if (!progress_ || std::this_thread::get_id() != caller_ || part <= told_ || failed()) return;
    told_ = part;
    if (!progress_(std::min(part, 1.0))) fail(Status::error("was stopped"));
  }

  TilePtr decode(int column, int row) {
    auto tile = std::make_shared<Tile>();
    uint64_t bytes = 0;
    if (!source_.read(column, row, *tile, bytes)) {
      fail(Status::error("some of its pixels cannot be read"));
      return nullptr;
    }
    return tile;
  }

  /// Decodes the tiles of a band that the band before did not leave.
  void decodeBand(int band, double from) {
    const int firstRow = band * kBand / grid_.tileHeight;
    const int lastRow = (std::min(grid_.height, (band + 1) * kBand) - 1) / grid_.tileHeight;
    shared_.erase(shared_.begin(), shared_.lower_bound({firstRow, 0}));
    std::vector<std::pair<int, int>> missing;
    for (int row = firstRow; row <= lastRow; ++row) {
      for (int column = 0; column < grid_.columns(); ++column) {
        if (shared_.emplace(std::make_pair(row, column), nullptr).second)
          missing.emplace_back(row, column);
      }
    }
    std::atomic<size_t> done{0};
    const auto work = [&](size_t i) {
      if (!failed()) shared_.at(missing[i]) = decode(missing[i].second, missing[i].first);
      tell(from + bandPart_ * kDecodeShare * static_cast<double>(++done) /
                      static_cast<double>(missing.size()));
    };
    if (source_.sequential()) {
      for (size_t i = 0; i < missing.size(); ++i) work(i);
    } else {
      parallelFor(missing.size(), work);
    }
  }

  /// Copies the source pixels from (left, top) into `out`, whose rows are kBand pixels long.
  bool gather(int left, int top, int width, int height, uint8_t* out,
              std::map<std::pair<int, int>, TilePtr>& own) {
    for (int row = top / grid_.tileHeight; row * grid_.tileHeight < top + height; ++row) {
      for (int column = left / grid_.tileWidth; column * grid_.tileWidth < left + width; ++column) {
        TilePtr& tile = local_ ? own[{row, column}] : shared_.at({row, column});
        if (!tile && local_) tile = decode(column, row);
        if (!tile) return false;
        const int tileLeft = column * grid_.tileWidth, tileTop = row * grid_.tileHeight;
        const int x0 = std::max(left, tileLeft),
                  x1 = std::min(left + width, tileLeft + tile->width);
        const int y0 = std::max(top, tileTop), y1 = std::min(top + height, tileTop + tile->height);
        for (int y = y0; y < y1; ++y) {
          std::memcpy(out + (static_cast<size_t>(y - top) * kBand + (x0 - left)) * grid_.channels,
                      tile->pixels.get() + (y - tileTop) * tile->stride() +
                          static_cast<size_t>(x0 - tileLeft) * grid_.channels,
                      static_cast<size_t>(x1 - x0) * grid_.channels);
        }
      }
    }
    return true;
  }

  void makeGroup(int group, int band) {
    std::map<std::pair<int, int>, TilePtr> own;
    std::vector<uint8_t> source(static_cast<size_t>(kBand) * kBand * grid_.channels);
    std::vector<uint8_t> tile(tileBytes());
    const int from = group * groupWidth_, to = std::min(grid_.width, from + groupWidth_);
    for (int left = from; left < to && !failed(); left += kBand) {
      const int top = band * kBand, width = std::min(kBand, grid_.width - left),
                height = std::min(kBand, grid_.height - top);
      if (!gather(left, top, width, height, source.data(), own)) return;
      if (withImage_) writeImageTiles(left, top, width, height, source.data(), tile.data());
      if (sizes_.empty()) continue;
      const size_t stride = static_cast<size_t>(kBand) * grid_.channels;
      bool keys = false;
      for (int y = 0; y < height && !keys; ++y) {
        keys = findKeys(source.data() + y * stride, width, grid_.channels);
      }
      keys = halve({source.data(), width, height, stride, grid_.channels, leastContent_}, keys,
                   true, tile.data(), tileStride());
      finishTile(0, left / kBand, band, tile.data(), keys);
    }
  }

  /// The tiles of the image itself in a piece of a band; `tile` is room for one.
  void writeImageTiles(int left, int top, int width, int height, const uint8_t* source,
                       uint8_t* tile) {
    const size_t stride = static_cast<size_t>(kBand) * grid_.channels;
    for (int y = 0; y < height; y += kPyramidTile) {
      for (int x = 0; x < width; x += kPyramidTile) {
        const int columns = std::min(kPyramidTile, width - x);
        const int rows = std::min(kPyramidTile, height - y);
        for (int row = 0; row < rows; ++row) {
          std::memcpy(tile + row * tileStride(),
                      source + (y + row) * stride + static_cast<size_t>(x) * grid_.channels,
                      static_cast<size_t>(columns) * grid_.channels);
        }
        pad(tile, columns, rows);
        if (Status written =
                sink_.writeTile(0, (left + x) / kPyramidTile, (top + y) / kPyramidTile, tile);
            !written)
          return fail(written);
      }
    }
  }

  /// Fills the rest of an edge tile, writes it, and leaves its half in the next level's row.
  void finishTile(size_t level, int column, int row, uint8_t* tile, bool keys) {
    const int width = pixelsIn(sizes_[level].width, column),
              height = pixelsIn(sizes_[level].height, row);
    pad(tile, width, height);
    if (Status written = sink_.writeTile(level + (withImage_ ? 1 : 0), column, row, tile); !written)
      return fail(written);
    if (level + 1 == sizes_.size()) return;
    Row& next = rows_[level];
    uint8_t* target = next.tiles.data() + static_cast<size_t>(column / 2) * tileBytes() +
                      (row % 2) * (kPyramidTile / 2) * tileStride() +
                      static_cast<size_t>(column % 2) * (kPyramidTile / 2) * grid_.channels;
    const bool roundUp = level % 2 == 1;
    const bool halfHasKeys =
        halve({tile, width, height, tileStride(), grid_.channels, leastContent_}, keys, roundUp,
              target, tileStride());
    if (halfHasKeys) {
      const std::lock_guard<std::mutex> lock(mutex_);
      next.keys[column / 2] = 1;
    }
  }

  /// Repeats the last column and row, so that compression has no edge to work on.
  void pad(uint8_t* tile, int width, int height) const {
    const size_t pixel = grid_.channels;
    for (int y = 0; y < height && width < kPyramidTile; ++y) {
      uint8_t* row = tile + y * tileStride();
      for (int x = width; x < kPyramidTile; ++x)
        std::memcpy(row + x * pixel, row + (width - 1) * pixel, pixel);
    }
    for (int y = height; y < kPyramidTile; ++y) {
      std::memcpy(tile + y * tileStride(), tile + (height - 1) * tileStride(), tileStride());
    }
  }

  /// Row `row` of the level below `level` is complete: finishes the rows above that it completes.
  void finishRows(size_t level, int row) {
    for (; level < sizes_.size() && !failed(); ++level) {
      const bool last = row + 1 == static_cast<int>(tilesIn(sizes_[level - 1].height));
      if (row % 2 == 0 && !last) return;
      row /= 2;
      Row& complete = rows_[level - 1];
      parallelFor(tilesIn(sizes_[level].width), [&](size_t column) {
        finishTile(level, static_cast<int>(column), row,
                   complete.tiles.data() + column * tileBytes(), complete.keys[column] != 0);
      });
      std::fill(complete.keys.begin(), complete.keys.end(), 0);
    }
  }

  const TileReader& source_;
  const TileGrid& grid_;
  bool withImage_;
  int leastContent_;
  TileSink& sink_;
  const Progress& progress_;
  std::thread::id caller_;
  std::vector<LevelSize> sizes_;
  std::vector<Row> rows_;
  int groupWidth_ = kBand;
  bool local_ = true;
  double bandPart_ = 1;
  double told_ = 0;
  std::map<std::pair<int, int>, TilePtr> shared_;
  std::mutex mutex_;
  Status failure_;
};

}  // namespace

Status cascadeTiles(const TileReader& source, const CascadeForm& form, TileSink& sink,
                    const Progress& progress) {
  return Cascade(source, form, sink, progress).run();
}

}  // namespace tarn::raster
