#include "components/raster/tilecache.h"

#include <utility>

namespace tarn::raster {

size_t TileCache::Hash::operator()(const TileKey& key) const {
  uint64_t mixed = key.image * 0x9E3779B97F4A7C15ULL + key.level;
  mixed = (mixed ^ (mixed >> 29)) * 0xBF58476D1CE4E5B9ULL + key.index;
  mixed = (mixed ^ (mixed >> 32)) * 0x94D049BB133111EBULL;
  return static_cast<size_t>(mixed ^ (mixed >> 29));
}

uint64_t TileCache::newImage() {
  static std::atomic<uint64_t> next{1};
  return next++;
}

TileCache& TileCache::shared() {
  static TileCache instance;
  return instance;
}

TilePtr TileCache::find(const TileKey& key) {
  Shard& shard = shardOf(key);
  const std::lock_guard<std::mutex> lock(shard.mutex);
  const auto found = shard.entries.find(key);
  if (found == shard.entries.end()) return nullptr;
  shard.recent.splice(shard.recent.begin(), shard.recent, found->second);
  return found->second->tile;
}

void TileCache::insert(const TileKey& key, TilePtr tile) {
  Shard& shard = shardOf(key);
  const std::lock_guard<std::mutex> lock(shard.mutex);
  if (shard.entries.count(key) != 0) return;
  shard.bytes += tile->bytes();
  shard.recent.push_front({key, std::move(tile)});
  shard.entries[key] = shard.recent.begin();
  trim(shard, limit_ / kShards);
}

void TileCache::trim(Shard& shard, uint64_t limit) {
  while (shard.bytes > limit && !shard.recent.empty()) {
    shard.bytes -= shard.recent.back().tile->bytes();
    shard.entries.erase(shard.recent.back().key);
    shard.recent.pop_back();
  }
}

void TileCache::removeImage(uint64_t image) {
  for (Shard& shard : shards_) {
    const std::lock_guard<std::mutex> lock(shard.mutex);
    for (auto entry = shard.recent.begin(); entry != shard.recent.end();) {
      if (entry->key.image != image) {
        ++entry;
        continue;
      }
      shard.bytes -= entry->tile->bytes();
      shard.entries.erase(entry->key);
      entry = shard.recent.erase(entry);
    }
  }
}

void TileCache::clear() {
  for (Shard& shard : shards_) {
    const std::lock_guard<std::mutex> lock(shard.mutex);
    shard.entries.clear();
    shard.recent.clear();
    shard.bytes = 0;
  }
}

void TileCache::setLimit(uint64_t bytes) {
  limit_ = bytes;
  for (Shard& shard : shards_) {
    const std::lock_guard<std::mutex> lock(shard.mutex);
    trim(shard, bytes / kShards);
  }
}

uint64_t TileCache::bytes() const {
  uint64_t total = 0;
  for (const Shard& shard : shards_) {
    const std::lock_guard<std::mutex> lock(shard.mutex);
    total += shard.bytes;
  }
  return total;
}

}  // namespace tarn::raster
