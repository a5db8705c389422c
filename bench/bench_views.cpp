// Views of one image through this library and through GDAL's RasterIO, the same windows in one run.
// bench_views IMAGE [WINDOWS]: IMAGE has its pyramid. Prints medians in milliseconds: GDAL with one
// thread and with all, this library, and its ratio to the better of the two.
#include <gdal_priv.h>

#include <cmath>
#include <string>

#include "base/path.h"
#include "bench/measure.h"
#include "components/raster/tilecache.h"

namespace {

using tarn::bench::median;
using tarn::bench::Times;
using tarn::raster::RasterImage;
using tarn::raster::Window;

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

/// With GDAL's own choice of cache size, whatever this library has chosen for itself.
void giveGdalItsCache(bool on) {
  static const GIntBig own = GDALGetCacheMax64();
  static const GIntBig ample = CPLGetUsablePhysicalRAM() / 20;
  GDALSetCacheMax64(on ? ample : own);
}

void emptyGdal() {
  giveGdalItsCache(true);
  while (GDALFlushCacheBlock()) {
  }
}

void show(const char* name, const std::vector<double>& one, const std::vector<double>& all,
          const std::vector<double>& ours) {
  const double best = std::min(median(one), median(all));
  std::printf("  %-5s %6.2f %6.2f %6.2f %5.2f", name, median(one), median(all), median(ours),
              median(ours) / best);
}

void compare(double reduction, int windows, GDALDataset& one, GDALDataset& all,
             const RasterImage& image) {
  tarn::bench::Random random;
  std::vector<uint8_t> out(static_cast<size_t>(tarn::bench::kWidth) * tarn::bench::kHeight * 3);
  Times gdalOne, gdalAll, ours;
  for (int i = 0; i < windows; ++i) {
    const Window w = tarn::bench::somewhere(random, reduction, image.width(), image.height());
    gdalOne.measure(w, image.width(), emptyGdal,
                    [&](const Window& v) { return readByGdal(one, v, out); });
    gdalAll.measure(w, image.width(), emptyGdal,
                    [&](const Window& v) { return readByGdal(all, v, out); });
    emptyGdal();
    giveGdalItsCache(false);
    ours.measure(
        w, image.width(), [] { tarn::raster::TileCache::shared().clear(); },
        [&](const Window& v) { return tarn::bench::readByUs(image, v, out); });
  }
  std::printf("%6.1f", reduction);
  show("cold", gdalOne.cold, gdalAll.cold, ours.cold);
  show("pan", gdalOne.pan, gdalAll.pan, ours.pan);
  show("again", gdalOne.again, gdalAll.again, ours.again);
  std::printf("\n");
}

GDALDataset* openByGdal(const std::string& path, bool allThreads) {
  const char* options[] = {"NUM_THREADS=ALL_CPUS", nullptr};
  const bool tiff = path.find(".tif") != std::string::npos;
  return GDALDataset::Open(path.c_str(), GDAL_OF_RASTER, nullptr,
                           allThreads && tiff ? options : nullptr);
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
  giveGdalItsCache(false);
  GDALDataset *one = openByGdal(path, false), *all = openByGdal(path, true);
  if (!one || !all) return 1;
  std::printf(
      "%s: milliseconds of RasterIO (average) with one thread and with all, of this "
      "library, and its ratio to the better one\n",
      path.c_str());
  for (const double reduction : {1.0, 3.7, 8.0, 18.5, 37.0}) {
    compare(reduction, windows, *one, *all, *opened.value());
  }
  GDALClose(one);
  GDALClose(all);
  return 0;
}
