// Views of one image through this library and through GDAL's RasterIO, the same windows in one run.
// bench_views IMAGE [WINDOWS]: IMAGE has its pyramid. Prints medians in milliseconds and the ratio.
#include <gdal_priv.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "base/path.h"
#include "components/raster/rasterimage.h"
#include "components/raster/tilecache.h"

namespace {

using tarn::raster::RasterImage;
using tarn::raster::Window;

constexpr int kWidth = 1920, kHeight = 1080;

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

double milliseconds(const std::function<bool()>& work) {
  const auto start = std::chrono::steady_clock::now();
  if (!work()) {
    std::fprintf(stderr, "a view cannot be read\n");
    std::exit(1);
  }
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

bool readByGdal(GDALDataset& dataset, const Window& w, std::vector<uint8_t>& out) {
  GDALRasterIOExtraArg extra;
  INIT_RASTERIO_EXTRA_ARG(extra);
  extra.eResampleAlg = GRIORA_Average;
  extra.bFloatingPointWindowValidity = TRUE;
  extra.dfXOff = w.x;
  extra.dfYOff = w.y;
  extra.dfXSize = w.columns * w.cellX;
  extra.dfYSize = w.rows * w.cellY;
  const int x = static_cast<int>(w.x), y = static_cast<int>(w.y);
  const int width =
      std::min(static_cast<int>(std::ceil(extra.dfXSize)), dataset.GetRasterXSize() - x);
  const int height =
      std::min(static_cast<int>(std::ceil(extra.dfYSize)), dataset.GetRasterYSize() - y);
  return dataset.RasterIO(GF_Read, x, y, width, height, out.data(), w.columns, w.rows, GDT_Byte, 3,
                          nullptr, 3, static_cast<GSpacing>(w.columns) * 3, 1, &extra) == CE_None;
}

bool readByUs(const RasterImage& image, const Window& w, std::vector<uint8_t>& out) {
  tarn::raster::ReadCounts counts;
  return image.read(w, false, out.data(), counts).isOk();
}

/// One window with empty caches, moved by a tenth of the screen, and the moved one once more.
struct Times {
  std::vector<double> cold, pan, again;
};

void measure(Times& times, Window w, double imageWidth, const std::function<void()>& empty,
             const std::function<bool(const Window&)>& read) {
  empty();
  times.cold.push_back(milliseconds([&] { return read(w); }));
  w.x += (w.x < imageWidth / 2 ? 1 : -1) * w.columns * w.cellX * 0.1;
  times.pan.push_back(milliseconds([&] { return read(w); }));
  times.again.push_back(milliseconds([&] { return read(w); }));
}

void compare(double reduction, int windows, GDALDataset& dataset, const RasterImage& image) {
  Random random;
  std::vector<uint8_t> out(static_cast<size_t>(kWidth) * kHeight * 3);
  Times gdal, ours;
  const int columns = std::min<int>(kWidth, static_cast<int>(image.width() / reduction));
  const int rows = std::min<int>(kHeight, static_cast<int>(image.height() / reduction));
  for (int i = 0; i < windows; ++i) {
    const double x = random.next() * (image.width() - columns * reduction);
    const double y = random.next() * (image.height() - rows * reduction);
    const Window w{x, y, reduction, reduction, columns, rows};
    const auto emptyGdal = [] {
      while (GDALFlushCacheBlock()) {
      }
    };
    measure(gdal, w, image.width(), emptyGdal,
            [&](const Window& v) { return readByGdal(dataset, v, out); });
    measure(
        ours, w, image.width(), [] { tarn::raster::TileCache::shared().clear(); },
        [&](const Window& v) { return readByUs(image, v, out); });
  }
  const auto show = [](const char* name, const std::vector<double>& theirs,
                       const std::vector<double>& mine) {
    std::printf("  %-5s %7.2f %7.2f %6.2f", name, median(theirs), median(mine),
                median(mine) / median(theirs));
  };
  std::printf("%6.1f", reduction);
  show("cold", gdal.cold, ours.cold);
  show("pan", gdal.pan, ours.pan);
  show("again", gdal.again, ours.again);
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_views IMAGE [WINDOWS]\n");
    return 2;
  }
  const std::string path = argv[1];
  const int windows = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
  auto opened = RasterImage::open(path, {{tarn::folderOf(path), ""}, true});
  if (!opened) {
    std::fprintf(stderr, "%s\n", opened.message().c_str());
    return 1;
  }
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER);
  if (!dataset) return 1;
  std::printf("%s: milliseconds of GDAL RasterIO (average), of this library, and their ratio\n",
              path.c_str());
  for (const double reduction : {1.0, 3.7, 8.0, 18.5, 37.0}) {
    compare(reduction, windows, *dataset, *opened.value());
  }
  GDALClose(dataset);
  return 0;
}
