// What the view benchmarks share: windows at made-up places, and times.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "components/raster/rasterimage.h"

namespace tarn::bench {

constexpr int kWidth = 1920, kHeight = 1080;

/// The same numbers at every run.
class Random {
 public:
  double next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<double>(state_ >> 11) * (1.0 / 9007199254740992.0);
  }

 private:
  uint64_t state_ = 88172645463325252ULL;
};

inline double milliseconds(const std::function<bool()>& work) {
  const auto start = std::chrono::steady_clock::now();
  if (!work()) {
    std::fprintf(stderr, "a view cannot be read\n");
    std::exit(1);
  }
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// A view of the screen's size somewhere on an image; smaller where the image is.
inline raster::Window somewhere(Random& random, double reduction, int width, int height) {
  const int columns = std::min<int>(kWidth, static_cast<int>(width / reduction));
  const int rows = std::min<int>(kHeight, static_cast<int>(height / reduction));
  const double x = random.next() * (width - columns * reduction);
  const double y = random.next() * (height - rows * reduction);
  return {x, y, reduction, reduction, columns, rows};
}

/// Times of one way to read: windows with empty caches, moved by a tenth of the screen, and the
/// moved ones once more.
struct Times {
  std::vector<double> cold, pan, again;

  void measure(raster::Window w, double imageWidth, const std::function<void()>& empty,
               const std::function<bool(const raster::Window&)>& read) {
    empty();
    cold.push_back(milliseconds([&] { return read(w); }));
    w.x += (w.x < imageWidth / 2 ? 1 : -1) * w.columns * w.cellX * 0.1;
    pan.push_back(milliseconds([&] { return read(w); }));
    again.push_back(milliseconds([&] { return read(w); }));
  }
};

inline bool readByUs(const raster::RasterImage& image, const raster::Window& w,
                     std::vector<uint8_t>& out) {
  raster::ReadCounts counts;
  return image.read(w, false, out.data(), counts).isOk();
}

}  // namespace tarn::bench
