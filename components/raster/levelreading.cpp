#include "components/raster/levelreading.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <utility>

#include "base/parallel.h"
#include "components/raster/resample.h"
#include "components/raster/taps.h"
#include "components/raster/tilecache.h"

namespace tarn::raster {
namespace {

// Decoded pixels that one step of a read may need at once; larger windows are read in steps.
constexpr int64_t kStepBytes = 64 << 20;
// Tiles that a sequential reader passes just above those wanted and that are kept.
constexpr int64_t kOnTheWayBytes = 32 << 20;
// Work on less than this is done before another thread has started.
constexpr int64_t kWorthAThread = 3 << 20;
constexpr int kMostCells = 1 << 17;
constexpr double kSameSize = 1e-6;
constexpr double kFarthest = 1e12;

bool isReadable(const Window& w) {
  for (const double value : {w.x, w.y, w.cellX, w.cellY}) {
    if (!std::isfinite(value) || std::fabs(value) > kFarthest) return false;
  }
  return w.cellX > 1e-9 && w.cellY > 1e-9 && w.columns > 0 && w.rows > 0 &&
         w.columns <= kMostCells && w.rows <= kMostCells;
}

/// `cell` in image pixels, `levelCell` in pixels of the level that is read, of which `levelSide`
/// make its side.
Filter filterFor(double cell, double levelCell, int levelSide, bool smooth) {
  // Cells of millions of pixels of a level come from images without a pyramid; averaging them would
  // take minutes, and their weights more memory than their pixels.
  constexpr double kMostAveraged = 16384;
  constexpr int kLongestSide = 16 << 20;
  if (levelCell > kMostAveraged || levelSide > kLongestSide) return Filter::kNearest;
  if (cell > 1 + kSameSize) return Filter::kBox;
  return smooth ? Filter::kBilinear : Filter::kNearest;
}

TileBlock blockFor(const TileGrid& grid, const AxisTaps& across, const AxisTaps& down) {
  TileBlock block;
  block.grid = grid;
  block.firstColumn = across.pixelBegin / grid.tileWidth;
  block.firstRow = down.pixelBegin / grid.tileHeight;
  block.columns = (across.pixelEnd - 1) / grid.tileWidth - block.firstColumn + 1;
  block.rows = (down.pixelEnd - 1) / grid.tileHeight - block.firstRow + 1;
  return block;
}

int64_t bytesOf(const TileBlock& block) {
  return static_cast<int64_t>(block.columns) * block.rows * block.grid.tileWidth *
         block.grid.tileHeight * block.grid.channels;
}

/// Makes the cells black that the taps leave alone.
void clearOutside(const Window& w, const AxisTaps& across, const AxisTaps& down, uint8_t* out) {
  const bool none = across.cells() == 0 || down.cells() == 0;
  const size_t stride = static_cast<size_t>(w.columns) * 3;
  const int first = none ? w.rows : down.first, last = none ? w.rows : down.last;
  std::memset(out, 0, stride * first);
  std::memset(out + stride * last, 0, stride * (w.rows - last));
  const size_t left = static_cast<size_t>(across.first) * 3,
               right = static_cast<size_t>(across.last) * 3;
  if (right - left == stride) return;
  for (int row = first; row < last; ++row) {
    std::memset(out + row * stride, 0, left);
    std::memset(out + row * stride + right, 0, stride - right);
  }
}

/// One read of a window.
class Reading {
 public:
  Reading(const LevelView& view, ReadCounts& counts) : view_(view), counts_(counts) {}

  bool read(const Window& window, bool smooth, uint8_t* out);
  std::vector<ByteRange> ranges(const Window& window, bool smooth) const;

 private:
  /// The cells of a window and the pixels of a level that they are made of.
  struct Cells {
    const Level& level;
    AxisTaps across;
    AxisTaps down;
  };
  Cells cellsOf(const Window& window, bool smooth) const;
  const Level& levelFor(double cellX, double cellY) const;
  bool readCells(const Level& level, const AxisTaps& across, const AxisTaps& down, uint8_t* out,
                 size_t stride);
  bool fetchTiles(const Level& level, TileBlock& block);
  /// Takes the block's tiles from the cache; the numbers of those that it does not have.
  std::vector<size_t> findTiles(const Level& level, TileBlock& block) const;
  static TilePlace placeOf(const TileBlock& block, size_t tile) {
    return {block.firstColumn + static_cast<int>(tile) % block.columns,
            block.firstRow + static_cast<int>(tile) / block.columns};
  }
  /// The file's ranges that tiles of the block lie in.
  static std::vector<ByteRange> rangesOf(const Level& level, const TileBlock& block,
                                         const std::vector<size_t>& tiles);
  TileKey keyOf(const Level& level, int column, int row) const;
  /// Reads a tile into the cache; null when it cannot be read. Adds to `bytes`.
  TilePtr readTile(const Level& level, int column, int row, uint64_t& bytes) const;
  /// A sequential reader decodes what lies above `row` anyway: keeps some of it, so that a view can
  /// move up without another start from the top.
  void readOnTheWay(const Level& level, const TileBlock& block, int row);

  const LevelView& view_;
  ReadCounts& counts_;
};

const Level& Reading::levelFor(double cellX, double cellY) const {
  const Level* best = &view_.levels.front();
  for (const Level& level : view_.levels) {
    // The coarsest that still has all the detail of the cells, never one beyond it.
    if (level.factorX <= cellX * (1 + kSameSize) && level.factorY <= cellY * (1 + kSameSize) &&
        level.factorX > best->factorX)
      best = &level;
  }
  return *best;
}

Reading::Cells Reading::cellsOf(const Window& window, bool smooth) const {
  const Level& level = levelFor(window.cellX, window.cellY);
  const TileGrid& grid = level.reader->grid();
  const auto axis = [&](double start, double cell, int cells, double factor, double origin,
                        int size, int pixels) {
    const AxisWindow along{(start - origin) / factor, cell / factor, cells,
                           (size - origin) / factor,  pixels,        -origin / factor};
    return makeTaps(along, filterFor(cell, cell / factor, pixels, smooth));
  };
  return {level,
          axis(window.x, window.cellX, window.columns, level.factorX, level.originX, view_.width,
               grid.width),
          axis(window.y, window.cellY, window.rows, level.factorY, level.originY, view_.height,
               grid.height)};
}

bool Reading::read(const Window& window, bool smooth, uint8_t* out) {
  const Cells cells = cellsOf(window, smooth);
  clearOutside(window, cells.across, cells.down, out);
  return readCells(cells.level, cells.across, cells.down, out,
                   static_cast<size_t>(window.columns) * 3);
}

std::vector<ByteRange> Reading::ranges(const Window& window, bool smooth) const {
  const Cells cells = cellsOf(window, smooth);
  if (cells.across.cells() == 0 || cells.down.cells() == 0) return {};
  TileBlock block = blockFor(cells.level.reader->grid(), cells.across, cells.down);
  return rangesOf(cells.level, block, findTiles(cells.level, block));
}

bool Reading::readCells(const Level& level, const AxisTaps& across, const AxisTaps& down,
                        uint8_t* out, size_t stride) {
  if (across.cells() == 0 || down.cells() == 0) return true;
  TileBlock block = blockFor(level.reader->grid(), across, down);
  constexpr float kThinLine = 0.12F;
  if (view_.thinLines) block.leastContent = kThinLine;
  if (bytesOf(block) > kStepBytes && across.cells() * static_cast<int64_t>(down.cells()) > 1) {
    const bool byRows = down.cells() > 1 && (block.rows > 1 || across.cells() == 1);
    const AxisTaps& axis = byRows ? down : across;
    const int middle = axis.first + axis.cells() / 2;
    const AxisTaps low = sliceTaps(axis, axis.first, middle);
    const AxisTaps high = sliceTaps(axis, middle, axis.last);
    return readCells(level, byRows ? across : low, byRows ? low : down, out, stride) &&
           readCells(level, byRows ? across : high, byRows ? high : down, out, stride);
  }
  if (!fetchTiles(level, block)) return false;
  const int64_t sourceBytes = static_cast<int64_t>(across.pixelEnd - across.pixelBegin) *
                              (down.pixelEnd - down.pixelBegin) * block.grid.channels;
  const int64_t cellBytes = static_cast<int64_t>(across.cells()) * down.cells() * 3;
  const int bands = std::max(sourceBytes, cellBytes) < kWorthAThread
                        ? 1
                        : std::clamp(down.cells() / 16, 1, static_cast<int>(workerCount()) * 3);
  parallelFor(bands, [&](size_t band) {
    const auto edge = [&](size_t i) {
      return down.first + static_cast<int>(static_cast<int64_t>(down.cells()) * i / bands);
    };
    resample(block, across, sliceTaps(down, edge(band), edge(band + 1)), out, stride);
  });
  return true;
}

TileKey Reading::keyOf(const Level& level, int column, int row) const {
  const auto index = static_cast<uint32_t>(row) * level.reader->grid().columns() + column;
  return {view_.image, static_cast<uint32_t>(&level - view_.levels.data()), index};
}

TilePtr Reading::readTile(const Level& level, int column, int row, uint64_t& bytes) const {
  auto tile = std::make_shared<Tile>();
  if (!level.reader->read(column, row, *tile, bytes)) return nullptr;
  tile->hasKeys =
      tile->hasKeys &&
      findKeys(tile->pixels.get(), static_cast<size_t>(tile->width) * tile->height, tile->channels);
  TileCache::shared().insert(keyOf(level, column, row), tile);
  return tile;
}

void Reading::readOnTheWay(const Level& level, const TileBlock& block, int row) {
  TileCache& cache = TileCache::shared();
  // The tiles above are there when a view moves down.
  if (row == 0 || cache.find(keyOf(level, block.firstColumn, row - 1))) return;
  const int64_t rowBytes = bytesOf(block) / block.rows;
  const int first = std::max<int64_t>(0, row - kOnTheWayBytes / rowBytes);
  for (int y = first; y < row; ++y) {
    for (int x = block.firstColumn; x < block.firstColumn + block.columns; ++x) {
      if (cache.find(keyOf(level, x, y)) || !readTile(level, x, y, counts_.bytes)) continue;
      ++counts_.tilesRead;
    }
  }
}

std::vector<size_t> Reading::findTiles(const Level& level, TileBlock& block) const {
  block.tiles.resize(static_cast<size_t>(block.columns) * block.rows);
  std::vector<size_t> missing;
  for (size_t i = 0; i < block.tiles.size(); ++i) {
    const TilePlace place = placeOf(block, i);
    block.tiles[i] = TileCache::shared().find(keyOf(level, place.column, place.row));
    if (!block.tiles[i]) missing.push_back(i);
  }
  return missing;
}

std::vector<ByteRange> Reading::rangesOf(const Level& level, const TileBlock& block,
                                         const std::vector<size_t>& tiles) {
  std::vector<TilePlace> places;
  places.reserve(tiles.size());
  for (const size_t i : tiles) places.push_back(placeOf(block, i));
  std::vector<ByteRange> ranges;
  level.reader->addRanges(places, ranges);
  return ranges;
}

bool Reading::fetchTiles(const Level& level, TileBlock& block) {
  const std::vector<size_t> missing = findTiles(level, block);
  if (!missing.empty() && level.reader->sequential())
    readOnTheWay(level, block, placeOf(block, missing.front()).row);
  std::shared_ptr<const void> held;
  if (view_.remote && !missing.empty() &&
      !view_.remote->fetch(rangesOf(level, block, missing), held))
    return false;
  std::atomic<uint64_t> bytes{0};
  std::atomic<bool> failed{false};
  // Each thread has a run of its own: neighbours are often made from the same pixels.
  const size_t runs = workerCount(), length = (missing.size() + runs - 1) / runs;
  const auto decode = [&](size_t n) {
    if (failed) return;
    const size_t i = missing[n];
    uint64_t read = 0;
    const TilePlace place = placeOf(block, i);
    block.tiles[i] = readTile(level, place.column, place.row, read);
    bytes += read;
    if (!block.tiles[i]) failed = true;
  };
  const int64_t missingBytes = static_cast<int64_t>(missing.size()) * block.grid.tileWidth *
                               block.grid.tileHeight * block.grid.channels;
  if (level.reader->sequential() || (level.reader->cheap() && missingBytes < kWorthAThread)) {
    for (size_t n = 0; n < missing.size(); ++n) decode(n);
  } else {
    parallelFor(length * runs, [&](size_t n) {
      const size_t at = n % runs * length + n / runs;
      if (at < missing.size()) decode(at);
    });
  }
  counts_.bytes += bytes;
  counts_.tilesRead += missing.size();
  counts_.tilesCached += block.tiles.size() - missing.size();
  return !failed;
}

}  // namespace

std::vector<ByteRange> rangesOfWindow(const LevelView& view, const Window& window, bool smooth) {
  ReadCounts counts;
  return isReadable(window) ? Reading(view, counts).ranges(window, smooth)
                            : std::vector<ByteRange>();
}

Status readWindow(const LevelView& view, const std::string& path, const Window& window, bool smooth,
                  uint8_t* out, ReadCounts& counts) {
  if (!isReadable(window) || !out) return Status::error(path + ": the window cannot be read");
  counts.pixels += static_cast<uint64_t>(window.columns) * window.rows;
  if (Reading(view, counts).read(window, smooth, out)) return Status::ok();
  std::memset(out, 0, static_cast<size_t>(window.columns) * window.rows * 3);
  return Status::error(path + ": some of its pixels cannot be read");
}

}  // namespace tarn::raster
