// Views of a rectified image beside plain views of the same image, and its export.
// bench_rectified IMAGE [WINDOWS]: medians in milliseconds for orders 1, 2 and 3.
// bench_rectified IMAGE ORDER nearest|bilinear TARGET: exports, through the points of rectify.sh.
#include <cmath>
#include <cstring>
#include <string>

#include "base/path.h"
#include "bench/measure.h"
#include "components/raster/tilecache.h"
#include "components/raster/warpexport.h"
#include "components/rectify/drawnmapping.h"

namespace {

using namespace tarn;
using namespace tarn::rectify;
using bench::median;
using raster::RasterImage;
using raster::WarpedImage;
using raster::Window;

/// A turn by three degrees, bent a little in higher orders: over the image's own coordinates.
std::vector<PointPair> pointsOf(const RasterImage& image, int order) {
  std::vector<PointPair> pairs;
  const raster::GeoTransform& t = image.geoTransform();
  const double angle = std::acos(-1.0) / 60, width = image.width(), height = image.height();
  for (int j = 0; j < 4; ++j) {
    for (int i = 0; i < 4; ++i) {
      const double u = i / 1.5 - 1, v = j / 1.5 - 1;
      const double x = u * width / 2 * t.a, y = -v * height / 2 * t.a;
      double X = x * std::cos(angle) - y * std::sin(angle);
      double Y = x * std::sin(angle) + y * std::cos(angle);
      if (order > 1) X += 0.01 * width * t.a * (u * u + u * v), Y -= 0.008 * width * t.a * v * v;
      if (order > 2) X += 0.006 * width * t.a * u * u * v, Y += 0.005 * width * t.a * v * v * v;
      pairs.push_back({{t.x0 + t.a * width * (i / 3.0), t.y0 + t.e * height * (j / 3.0)},
                       {t.x0 + t.a * width / 2 + X, t.y0 + t.e * height / 2 + Y}});
    }
  }
  return pairs;
}

Chain chainOf(const RasterImage& image, int order) {
  constexpr Method kMethods[] = {Method::kAffine, Method::kQuadratic, Method::kCubic};
  const auto solved = solve(kMethods[order - 1], pointsOf(image, order));
  return {image.geoTransform(), image.width(), image.height(), {}, {{*solved.fit, {}}}};
}

raster::WarpGrid gridOf(const Chain& chain) {
  const Frame frame = *frameOf(chain);
  return {frame.transform, frame.width, frame.height,
          std::make_shared<DrawnMapping>(chain, frame.transform)};
}

template <typename Image>
void show(const Image& image, const char* name, double reduction, int windows) {
  bench::Random random;
  bench::Times times;
  std::vector<uint8_t> out(static_cast<size_t>(bench::kWidth) * bench::kHeight * 3);
  raster::ReadCounts counts;
  for (int i = 0; i < windows; ++i) {
    // The middle of the image: a view of a turned one is full there, too.
    Window w = bench::somewhere(random, reduction, image.width(), image.height());
    w.x = image.width() * 0.25 + w.x / 2;
    w.y = image.height() * 0.25 + w.y / 2;
    times.measure(
        w, image.width(), [] { raster::TileCache::shared().clear(); },
        [&](const Window& window) { return image.read(window, false, out.data(), counts).isOk(); });
  }
  std::printf("  %-8s cold %6.2f  pan %6.2f  again %6.2f\n", name, median(times.cold),
              median(times.pan), median(times.again));
}

int exportTo(const RasterImage& image, const char* order, const char* resampling,
             const char* target) {
  raster::ExportRequest request;
  request.target = target;
  request.resampling = std::strcmp(resampling, "nearest") == 0
                           ? raster::ExportResampling::kNearest
                           : raster::ExportResampling::kBilinear;
  request.grid = gridOf(chainOf(image, std::atoi(order)));
  const Status done = raster::exportWarped(image, request, nullptr);
  if (!done) std::fprintf(stderr, "%s\n", done.message().c_str());
  return done ? 0 : 1;
}

/// The points for gdal_translate: pixel, line, x, y.
void printPoints(const RasterImage& image, int order) {
  for (const PointPair& p : pointsOf(image, order)) {
    const raster::GeoTransform& t = image.geoTransform();
    std::printf("-gcp %.6f %.6f %.6f %.6f\n", (p.source.x - t.x0) / t.a, (p.source.y - t.y0) / t.e,
                p.target.x, p.target.y);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return 2;
  const std::string path = arguments[1];
  auto opened = RasterImage::open(path, {{folderOf(path), ""}, true});
  if (!opened) {
    std::fprintf(stderr, "%s\n", opened.message().c_str());
    return 1;
  }
  const std::shared_ptr<RasterImage> image = opened.take();
  if (count == 5) return exportTo(*image, arguments[2], arguments[3], arguments[4]);
  if (count == 4) {
    printPoints(*image, std::atoi(arguments[2]));
    return 0;
  }
  const int windows = count > 2 ? std::atoi(arguments[2]) : 15;
  for (const double reduction : {1.0, 2.0, 3.7}) {
    std::printf("reduction %g\n", reduction);
    show(*image, "plain", reduction, windows);
    for (const int order : {1, 2, 3}) {
      const Chain chain = chainOf(*image, order);
      show(*WarpedImage::warp(image, gridOf(chain)), ("order " + std::to_string(order)).c_str(),
           reduction, windows);
    }
  }
  return 0;
}
