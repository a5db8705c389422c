#include "components/raster/cachedlevel.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>
#include <vector>

namespace tarn::raster {

TileKey CachedLevel::keyOf(int column, int row) const {
  return {image_, level_, static_cast<uint32_t>(row) * grid().columns() + column};
}

void CachedLevel::addRanges(const std::vector<Part>& parts, std::vector<ByteRange>& ranges) const {
  const TileGrid& g = grid();
  std::set<std::pair<int, int>> wanted;
  for (const Part& part : parts) {
    if (part.isEmpty()) continue;
    for (int row = part.y / g.tileHeight; row <= (part.y + part.height - 1) / g.tileHeight; ++row) {
      for (int column = part.x / g.tileWidth; column <= (part.x + part.width - 1) / g.tileWidth;
           ++column)
        wanted.emplace(row, column);
    }
  }
  std::vector<TilePlace> places;
  for (const auto& [row, column] : wanted) {
    if (!TileCache::shared().find(keyOf(column, row))) places.push_back({column, row});
  }
  reader_.addRanges(places, ranges);
}

TilePtr CachedLevel::tile(int column, int row, uint64_t& bytesRead) const {
  const TileKey key = keyOf(column, row);
  TileCache& cache = TileCache::shared();
  if (TilePtr found = cache.find(key)) return found;
  // Neighbours in both directions have locks of their own.
  const size_t lockIndex = static_cast<size_t>(row) * 5 + column;
  const std::lock_guard<std::mutex> lock(decoding_[lockIndex % decoding_.size()]);
  // Another thread may have decoded it while this one waited.
  if (TilePtr found = cache.find(key)) return found;
  auto decoded = std::make_shared<Tile>();
  if (!reader_.read(column, row, *decoded, bytesRead)) return nullptr;
  decoded->hasKeys =
      decoded->hasKeys &&
      findKeys(decoded->pixels.get(), static_cast<size_t>(decoded->width) * decoded->height,
               decoded->channels);
  cache.insert(key, decoded);
  return decoded;
}

bool CachedLevel::copy(PixelPatch& patch, uint64_t& bytesRead) const {
  constexpr size_t kReadableBehind = 8;
  const TileGrid& g = grid();
  patch.channels = g.channels;
  const int behind = 1 + static_cast<int>((kReadableBehind + patch.stride() - 1) / patch.stride());
  Tile room;
  room.allocate(patch.width, patch.height + behind, g.channels);
  patch.pixels = std::move(room.pixels);
  std::memset(patch.pixels.get() + patch.stride() * patch.height, 0, patch.stride() * behind);
  bool keysNear = false;
  for (int row = patch.y / g.tileHeight; row * g.tileHeight < patch.y + patch.height; ++row) {
    const int top = row * g.tileHeight;
    const int from = std::max(top, patch.y),
              to = std::min(top + g.tileHeight, patch.y + patch.height);
    for (int column = patch.x / g.tileWidth; column * g.tileWidth < patch.x + patch.width;
         ++column) {
      const TilePtr source = tile(column, row, bytesRead);
      if (!source) return false;
      const int left = column * g.tileWidth;
      const int first = std::max(left, patch.x);
      const int last = std::min(left + g.tileWidth, patch.x + patch.width);
      keysNear = keysNear || source->hasKeys;
      for (int y = from; y < to; ++y) {
        std::memcpy(patch.pixels.get() + (y - patch.y) * patch.stride() +
                        static_cast<size_t>(first - patch.x) * g.channels,
                    source->pixels.get() + (y - top) * source->stride() +
                        static_cast<size_t>(first - left) * g.channels,
                    static_cast<size_t>(last - first) * g.channels);
      }
    }
  }
  patch.hasKeys = keysNear && findKeys(patch.pixels.get(),
                                       static_cast<size_t>(patch.width) * patch.height, g.channels);
  return true;
}

}  // namespace tarn::raster
