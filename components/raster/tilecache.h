// The decoded tiles of all open images, one cache a process, bounded in bytes.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <unordered_map>

#include "components/raster/tile.h"

namespace tarn::raster {

struct TileKey {
  uint64_t image = 0;
  uint32_t level = 0;
  uint32_t index = 0;
  bool operator==(const TileKey& o) const {
    return image == o.image && level == o.level && index == o.index;
  }
};

/// Keeps the tiles used last. Every operation may be called from any thread.
class TileCache {
 public:
  static constexpr uint64_t kDefaultLimit = 256ULL << 20;

  explicit TileCache(uint64_t limit = kDefaultLimit) : limit_(limit) {}

  /// A number for an image that no other has in this process.
  static uint64_t newImage();

  /// The cache that all images of the process share.
  static TileCache& shared();

  TilePtr find(const TileKey& key);
  void insert(const TileKey& key, TilePtr tile);
  /// Takes out all tiles of an image.
  void removeImage(uint64_t image);
  void clear();

  /// Takes effect at once. Each of the shards holds an equal part of the limit.
  void setLimit(uint64_t bytes);
  uint64_t limit() const { return limit_; }
  /// Bytes of the tiles held.
  uint64_t bytes() const;

 private:
  static constexpr size_t kShards = 8;

  struct Entry {
    TileKey key;
    TilePtr tile;
  };
  struct Hash {
    size_t operator()(const TileKey& key) const;
  };
  struct Shard {
    mutable std::mutex mutex;
    std::list<Entry> recent;
    std::unordered_map<TileKey, std::list<Entry>::iterator, Hash> entries;
    uint64_t bytes = 0;
  };

  Shard& shardOf(const TileKey& key) { return shards_[Hash()(key) % kShards]; }
  static void trim(Shard& shard, uint64_t limit);

  std::atomic<uint64_t> limit_;
  std::array<Shard, kShards> shards_;
};

}  // namespace tarn::raster
