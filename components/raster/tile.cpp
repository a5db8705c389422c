#include "components/raster/tile.h"

#include <algorithm>

#include "components/raster/vectorised.h"

namespace tarn::raster {
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

}  // namespace

void Tile::allocate(int w, int h, int c) {
  width = w;
  height = h;
  channels = c;
  // Left unfilled: every byte is about to be decoded into, and filling costs as much as decoding.
  pixels.reset(new uint8_t[bytes()]);
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
