#include "components/raster/presentedlevels.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "components/raster/cachedlevel.h"
#include "components/raster/resampledreader.h"
#include "components/raster/turnedreader.h"

namespace tarn::raster {
namespace {

constexpr double kSameSize = 1 + 1e-6;

/// The origin of a level along an axis that is counted from the other end: what its last pixel
/// covers beyond the image now lies before the first.
double mirroredOrigin(double imageSize, double factor, int pixels) {
  constexpr double kTrace = 1e-6;
  const double origin = imageSize - factor * pixels;
  return std::fabs(origin) < kTrace ? 0 : std::min(origin, 0.0);
}

Level turnedLevel(const Level& own, std::shared_ptr<const CachedLevel> cached,
                  const Placement& placement) {
  const Turn& turn = placement.turn;
  const TileGrid& grid = own.reader->grid();
  Level level;
  level.factorX = own.factorX;
  level.factorY = own.factorY;
  const int width = turn.transposed ? placement.height : placement.width;
  const int height = turn.transposed ? placement.width : placement.height;
  if (turn.mirroredColumns) level.originX = mirroredOrigin(width, own.factorX, grid.width);
  if (turn.mirroredRows) level.originY = mirroredOrigin(height, own.factorY, grid.height);
  if (turn.transposed) {
    std::swap(level.factorX, level.factorY);
    std::swap(level.originX, level.originY);
  }
  level.reader = makeTurnedReader(std::move(cached), turn);
  return level;
}

}  // namespace

std::vector<Level> presentLevels(const std::vector<Level>& own, uint64_t cacheImage,
                                 const Placement& placement, int width, int height) {
  std::vector<Level> presented;
  for (size_t i = 0; i < own.size(); ++i) {
    auto cached =
        std::make_shared<const CachedLevel>(*own[i].reader, cacheImage, static_cast<uint32_t>(i));
    if (!placement.resampling) {
      presented.push_back(turnedLevel(own[i], std::move(cached), placement));
      continue;
    }
    Level level;
    level.factorX = level.factorY = std::sqrt(own[i].factorX * own[i].factorY);
    level.reader = makeResampledReader(
        {std::move(cached), own[i].factorX, own[i].factorY}, *placement.resampling,
        {placement.width, placement.height, width, height, level.factorX});
    presented.push_back(std::move(level));
  }
  return presented;
}

std::vector<Level> warpLevels(const std::vector<Level>& own, uint64_t cacheImage,
                              const std::shared_ptr<const CurvedMapping>& mapping,
                              const PresentedGrid& grid, double pixelLength) {
  const auto factorOf = [](const Level& level) { return std::sqrt(level.factorX * level.factorY); };
  std::vector<Level> warped;
  size_t from = 0;
  for (const Level& shown : own) {
    Level level;
    level.factorX = level.factorY = factorOf(shown);
    // Where pixels of the grid are long, a coarser level has all their detail.
    while (from + 1 < own.size() &&
           factorOf(own[from + 1]) <= level.factorX * std::max(1.0, pixelLength) * kSameSize)
      ++from;
    const Level& source = own[from];
    auto cached = std::make_shared<const CachedLevel>(*source.reader, cacheImage,
                                                      static_cast<uint32_t>(from));
    PresentedGrid presented = grid;
    presented.factor = level.factorX;
    level.reader =
        makeCurvedReader({std::move(cached), source.factorX, source.factorY}, mapping, presented);
    warped.push_back(std::move(level));
  }
  return warped;
}

}  // namespace tarn::raster
