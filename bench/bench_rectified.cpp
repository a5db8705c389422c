// Views of a rectified image beside plain views of the same image, and its export.
// bench_rectified IMAGE [WINDOWS]: medians in milliseconds for orders 1, 2 and 3.
// bench_rectified IMAGE ORDER nearest|bilinear TARGET: exports, through the points of rectify.sh.
#include <ctime>

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
  return {frame.transform, frame.width, frame.height, std::make_shared<DrawnMapping>(chain, frame)};
}

/// Medians of the times that passed and of the processor's, of all threads, in milliseconds.
struct Series {
  std::vector<double> passed, processor;

  void measure(const std::function<bool()>& work) {
    timespec from{}, to{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &from);
    passed.push_back(bench::milliseconds(work));
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &to);
    processor.push_back(1e3 * static_cast<double>(to.tv_sec - from.tv_sec) +
                        1e-6 * static_cast<double>(to.tv_nsec - from.tv_nsec));
  }
};

/// One way to see the image: cold (nothing decoded or warped), moved by a tenth of the screen, and
/// the moved window once more.
struct Way {
  std::string name;
  std::function<bool(const Window&, uint8_t*)> read;
  double width = 0;
  double height = 0;
  Series cold, pan, again;
};

/// Each window with all ways in turn, so that what else runs on the machine meets all alike.
void compare(std::vector<Way>& ways, double reduction, int windows) {
  bench::Random random;
  std::vector<uint8_t> out(static_cast<size_t>(bench::kWidth) * bench::kHeight * 3);
  for (int i = 0; i < windows; ++i) {
    const double u = random.next(), v = random.next();
    for (Way& way : ways) {
      // Away from the edges: a view of a turned image is full there, too.
      constexpr double kEdge = 0.07;
      Window w{0, 0, reduction, reduction, bench::kWidth, bench::kHeight};
      const auto within = [&](double size, double length, double share) {
        return kEdge * size + share * std::max(0.0, (1 - 2 * kEdge) * size - length);
      };
      w.x = within(way.width, w.columns * reduction, u);
      w.y = within(way.height, w.rows * reduction, v);
      raster::TileCache::shared().clear();
      way.cold.measure([&] { return way.read(w, out.data()); });
      w.x += (u < 0.5 ? 0.1 : -0.1) * w.columns * reduction;
      way.pan.measure([&] { return way.read(w, out.data()); });
      way.again.measure([&] { return way.read(w, out.data()); });
    }
  }
  std::printf(
      "reduction %g    passed: cold    pan  again   processor: cold    pan  again   ratio cold\n",
      reduction);
  const double plain = median(ways[0].cold.passed), plainUsed = median(ways[0].cold.processor);
  for (const Way& way : ways) {
    std::printf("  %-17s %9.2f %6.2f %6.2f %17.2f %6.2f %6.2f   %5.2f (processor %.2f)\n",
                way.name.c_str(), median(way.cold.passed), median(way.pan.passed),
                median(way.again.passed), median(way.cold.processor), median(way.pan.processor),
                median(way.again.processor), median(way.cold.passed) / plain,
                median(way.cold.processor) / plainUsed);
  }
}

template <typename Image>
Way wayOf(const std::string& name, std::shared_ptr<Image> image) {
  Way way;
  way.name = name;
  way.width = image->width();
  way.height = image->height();
  way.read = [image](const Window& w, uint8_t* out) {
    raster::ReadCounts counts;
    return image->read(w, false, out, counts).isOk();
  };
  return way;
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
    std::vector<Way> ways{wayOf("plain", image)};
    for (const int order : {1, 2, 3})
      ways.push_back(wayOf("order " + std::to_string(order),
                           WarpedImage::warp(image, gridOf(chainOf(*image, order)))));
    compare(ways, reduction, windows);
  }
  return 0;
}
