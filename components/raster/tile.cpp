#include "components/raster/tile.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "components/raster/vectorised.h"

namespace tarn::raster {

/// Memory that waits for the next tile, bounded. Any thread may use it.
class PixelPool {
 public:
  /// Memory of at least `bytes`, not much more; its size is put into `capacity`.
  std::unique_ptr<uint8_t[]> take(size_t bytes, size_t& capacity) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      for (size_t i = waiting_.size(); i-- > 0;) {
        Piece& piece = waiting_[i];
        if (piece.capacity < bytes || piece.capacity > bytes + bytes / 4) continue;
        held_ -= capacity = piece.capacity;
        std::swap(piece, waiting_.back());
        std::unique_ptr<uint8_t[]> memory = std::move(waiting_.back().memory);
        waiting_.pop_back();
        return memory;
      }
    }
    capacity = bytes;
    // Left unfilled: every byte is about to be decoded into, and filling costs as much as decoding.
    return std::unique_ptr<uint8_t[]>(new uint8_t[bytes]);
  }

  void give(std::unique_ptr<uint8_t[]> memory, size_t capacity) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (held_ + capacity > kMostHeld) return;
    held_ += capacity;
    waiting_.push_back({std::move(memory), capacity});
  }

 private:
#if defined(__SANITIZE_ADDRESS__)
  // So that the sanitizer sees a use of a tile that is gone.
  static constexpr size_t kMostHeld = 0;
#else
  static constexpr size_t kMostHeld = 32 << 20;
#endif

  struct Piece {
    std::unique_ptr<uint8_t[]> memory;
    size_t capacity = 0;
  };
  std::mutex mutex_;
  std::vector<Piece> waiting_;
  size_t held_ = 0;
};

namespace {

TARN_VECTORISED void lowestAndHighest(const uint8_t* bytes, size_t count, uint8_t& lowest,
                                      uint8_t& highest) {
  uint8_t low = 255, high = 0;
  for (size_t i = 0; i < count; ++i) {
    low = std::min(low, bytes[i]);
    high = std::max(high, bytes[i]);
  }
  lowest = low;
  highest = high;
}

bool pixelIsKey(const uint8_t* p, int channels) {
  if (channels == 1) return p[0] == 0 || p[0] == 255;
  return (p[0] == 0 && p[1] == 0 && p[2] == 0) || (p[0] == 255 && p[1] == 255 && p[2] == 255);
}

/// Tiles hold the pool too, so it outlives those that go at the end of the process.
const std::shared_ptr<PixelPool>& pixelPool() {
  static const auto pool = std::make_shared<PixelPool>();
  return pool;
}

}  // namespace

void PixelRecycler::operator()(uint8_t* pixels) const {
  std::unique_ptr<uint8_t[]> memory(pixels);
  if (pool) pool->give(std::move(memory), capacity);
}

void Tile::allocate(int w, int h, int c) {
  width = w;
  height = h;
  channels = c;
  size_t capacity = 0;
  std::unique_ptr<uint8_t[]> memory = pixelPool()->take(bytes(), capacity);
  pixels = PixelMemory(memory.release(), {pixelPool(), capacity});
}

int TileGrid::widthOf(int column) const {
  return std::min(tileWidth, width - column * tileWidth);
}

int TileGrid::heightOf(int row) const {
  return std::min(tileHeight, height - row * tileHeight);
}

bool findKeys(const uint8_t* pixels, size_t count, int channels) {
  constexpr size_t kChunk = 1024;
  for (size_t first = 0; first < count; first += kChunk) {
    const size_t last = std::min(count, first + kChunk);
    const uint8_t* chunk = pixels + first * channels;
    uint8_t lowest = 0, highest = 0;
    lowestAndHighest(chunk, (last - first) * channels, lowest, highest);
    if (lowest > 0 && highest < 255) continue;
    if (channels == 1) return true;
    for (size_t i = 0; i < last - first; ++i) {
      if (pixelIsKey(chunk + i * channels, channels)) return true;
    }
  }
  return false;
}

}  // namespace tarn::raster
