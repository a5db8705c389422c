#include "components/raster/stretch.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "base/parallel.h"

namespace tarn::raster {
namespace {

// Pixels that are looked through for nothing before they are stretched together.
constexpr size_t kChunk = 512;
// Work on less than this is done before another thread has started.
constexpr size_t kWorthAThread = 1 << 18;

// What a sample of a large level takes.
constexpr int64_t kSamplePixels = 16 << 20;
constexpr int64_t kLeastSampleTiles = 16;

constexpr double kLowest = 1, kHighest = 254;

bool isNothing(const uint8_t* p) {
  return (p[0] | p[1] | p[2]) == 0 || (p[0] & p[1] & p[2]) == 255;
}

uint8_t toContent(double value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, kLowest, kHighest)));
}

using Counts = std::array<uint64_t, 256>;
using Table = std::array<uint8_t, 256>;

void equalise(const Counts& counts, double total, Table& table) {
  const auto lowest = std::find_if(counts.begin(), counts.end(), [](uint64_t n) { return n > 0; });
  const auto below = static_cast<double>(*lowest);
  double sum = 0;
  for (size_t value = 0; value < counts.size(); ++value) {
    sum += static_cast<double>(counts[value]);
    table[value] = toContent((sum - below) / (total - below) * 255);
  }
}

void spreadDeviations(const Counts& counts, double total, Table& table) {
  double sum = 0, squares = 0;
  for (size_t value = 0; value < counts.size(); ++value) {
    const auto v = static_cast<double>(value), n = static_cast<double>(counts[value]);
    sum += n * v;
    squares += n * v * v;
  }
  const double mean = sum / total;
  const double deviation = std::sqrt(std::max(0.0, squares / total - mean * mean));
  for (size_t value = 0; value < counts.size(); ++value) {
    const double offset = static_cast<double>(value) - (mean - 2 * deviation);
    table[value] = toContent(offset / (4 * deviation) * 255);
  }
}

/// Pixels without any nothing among them. Twelve bytes are read before any is written: that goes a
/// third faster than pixel by pixel.
void stretchContent(const StretchTables& tables, uint8_t* rgb, size_t count) {
  constexpr size_t kStep = 12;
  const size_t bytes = 3 * count, whole = bytes - bytes % kStep;
  for (size_t i = 0; i < whole; i += kStep) {
    uint8_t values[kStep], stretched[kStep];
    std::memcpy(values, rgb + i, kStep);
    for (size_t k = 0; k < kStep; ++k) stretched[k] = tables[k % 3][values[k]];
    std::memcpy(rgb + i, stretched, kStep);
  }
  for (size_t i = whole; i < bytes; ++i) rgb[i] = tables[i % 3][rgb[i]];
}

void stretchMixed(const StretchTables& tables, uint8_t* rgb, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    uint8_t* p = rgb + 3 * i;
    if (isNothing(p)) continue;
    for (size_t c = 0; c < 3; ++c) p[c] = tables[c][p[c]];
  }
}

void stretchPart(const StretchTables& tables, uint8_t* rgb, size_t count) {
  for (size_t first = 0; first < count; first += kChunk) {
    const size_t size = std::min(kChunk, count - first);
    uint8_t* chunk = rgb + 3 * first;
    if (findKeys(chunk, size, 3)) {
      stretchMixed(tables, chunk, size);
    } else {
      stretchContent(tables, chunk, size);
    }
  }
}

/// The tiles to look at, in the order in which they lie in the file.
std::vector<TilePlace> tilesToSample(const TileGrid& grid) {
  const int64_t tilePixels = static_cast<int64_t>(grid.tileWidth) * grid.tileHeight;
  const auto wanted = static_cast<double>(std::max(kLeastSampleTiles, kSamplePixels / tilePixels));
  const double columns = grid.columns(), rows = grid.rows();
  const double fewer = std::min(1.0, std::sqrt(wanted / (columns * rows)));
  const int across = std::max(1, static_cast<int>(columns * fewer)),
            down = std::max(1, static_cast<int>(std::min(rows, wanted / across)));
  std::vector<TilePlace> tiles;
  for (int j = 0; j < down; ++j) {
    for (int i = 0; i < across; ++i) {
      tiles.push_back({static_cast<int>((i + 0.5) * columns / across),
                       static_cast<int>((j + 0.5) * rows / down)});
    }
  }
  return tiles;
}

}  // namespace

std::optional<Histogram> sampleLevel(const TileReader& level, const RemoteBytes* remote) {
  const std::vector<TilePlace> tiles = tilesToSample(level.grid());
  std::shared_ptr<const void> held;
  if (remote) {
    std::vector<ByteRange> ranges;
    level.addRanges(tiles, ranges);
    if (!remote->fetch(ranges, held)) return std::nullopt;
  }
  std::mutex mutex;
  Histogram total;
  bool failed = false;
  const auto look = [&](size_t i) {
    Tile tile;
    uint64_t bytes = 0;
    Histogram histogram;
    const bool done = level.read(tiles[i].column, tiles[i].row, tile, bytes);
    if (done)
      histogram.add(tile.pixels.get(), static_cast<size_t>(tile.width) * tile.height,
                    tile.channels);
    const std::lock_guard<std::mutex> lock(mutex);
    failed = failed || !done;
    total.add(histogram);
  };
  if (level.sequential()) {
    for (size_t i = 0; i < tiles.size() && !failed; ++i) look(i);
  } else {
    parallelFor(tiles.size(), look);
  }
  return failed ? std::nullopt : std::optional<Histogram>(total);
}

void Histogram::add(const uint8_t* pixels, size_t count, int channels) {
  if (channels == 1) {
    Counts gray{};
    for (size_t i = 0; i < count; ++i) ++gray[pixels[i]];
    gray[0] = gray[255] = 0;
    for (Counts& channel : counts) {
      for (size_t value = 0; value < gray.size(); ++value) channel[value] += gray[value];
    }
    return;
  }
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* p = pixels + 3 * i;
    if (isNothing(p)) continue;
    for (size_t c = 0; c < 3; ++c) ++counts[c][p[c]];
  }
}

void Histogram::add(const Histogram& other) {
  for (size_t c = 0; c < counts.size(); ++c) {
    for (size_t value = 0; value < counts[c].size(); ++value)
      counts[c][value] += other.counts[c][value];
  }
}

StretchTables makeStretchTables(const Histogram& histogram, StretchMode mode) {
  StretchTables tables;
  for (size_t c = 0; c < tables.size(); ++c) {
    const Counts& counts = histogram.counts[c];
    for (size_t value = 0; value < counts.size(); ++value)
      tables[c][value] = static_cast<uint8_t>(value);
    const auto used = std::count_if(counts.begin(), counts.end(), [](uint64_t n) { return n > 0; });
    if (used < 2) continue;
    double total = 0;
    for (const uint64_t n : counts) total += static_cast<double>(n);
    if (mode == StretchMode::kEqualise) equalise(counts, total, tables[c]);
    if (mode == StretchMode::kDeviations) spreadDeviations(counts, total, tables[c]);
  }
  return tables;
}

void applyStretch(const StretchTables& tables, uint8_t* rgb, size_t count) {
  if (count < kWorthAThread) return stretchPart(tables, rgb, count);
  const size_t parts = size_t{workerCount()} * 2;
  parallelFor(parts, [&](size_t i) {
    const size_t from = count * i / parts, to = count * (i + 1) / parts;
    stretchPart(tables, rgb + 3 * from, to - from);
  });
}

}  // namespace tarn::raster
