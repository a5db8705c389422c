// Views of images of several sizes, their windows in turn: a redraw must not take longer on a
// larger image. bench_sizes WINDOWS IMAGE...: images with pyramids. Prints medians in milliseconds
// and the ratio of the slowest to the fastest image.
#include <memory>
#include <string>

#include "base/path.h"
#include "bench/measure.h"
#include "components/raster/tilecache.h"

int main(int argc, char** argv) {
  using tarn::bench::Times;
  using tarn::raster::RasterImage;
  const int windows = argc > 2 ? std::atoi(argv[1]) : 0;
  if (windows < 1) {
    std::fprintf(stderr, "usage: bench_sizes WINDOWS IMAGE...\n");
    return 2;
  }
  std::vector<std::shared_ptr<RasterImage>> images;
  for (int i = 2; i < argc; ++i) {
    auto opened = RasterImage::open(argv[i], {{tarn::folderOf(argv[i]), ""}, true});
    if (!opened) {
      std::fprintf(stderr, "%s\n", opened.message().c_str());
      return 1;
    }
    images.push_back(opened.value());
  }
  std::vector<uint8_t> out(static_cast<size_t>(tarn::bench::kWidth) * tarn::bench::kHeight * 3);
  for (const double reduction : {1.0, 2.0, 3.7}) {
    tarn::bench::Random random;
    std::vector<Times> times(images.size());
    for (int w = 0; w < windows; ++w) {
      for (size_t i = 0; i < images.size(); ++i) {
        times[i].measure(
            tarn::bench::somewhere(random, reduction, images[i]->width(), images[i]->height()),
            images[i]->width(), [] { tarn::raster::TileCache::shared().clear(); },
            [&](const tarn::raster::Window& v) {
              return tarn::bench::readByUs(*images[i], v, out);
            });
      }
    }
    const auto show = [&](const char* name, std::vector<double> Times::*phase) {
      std::printf("%6.1f %-5s", reduction, name);
      double least = 1e9, most = 0;
      for (size_t i = 0; i < images.size(); ++i) {
        const double value = tarn::bench::median(times[i].*phase);
        least = std::min(least, value);
        most = std::max(most, value);
        std::printf("  %d: %.2f", images[i]->width(), value);
      }
      std::printf("  slowest/fastest %.2f\n", most / least);
    };
    show("cold", &Times::cold);
    show("pan", &Times::pan);
  }
  return 0;
}
