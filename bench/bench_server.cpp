// Views of an image on a server: requests, bytes and milliseconds, ours or through GDAL's /vsicurl.
// server.sh starts the servers and prints both beside each other.
#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include "bench/measure.h"
#include "imageclient/http.h"
#include "imageclient/tarnclientmanager.h"

namespace {

using tarn::bench::kHeight;
using tarn::bench::kWidth;
using tarn::bench::milliseconds;
using tarn::bench::Random;

struct Totals {
  double requests = 0;
  double bytes = 0;
};

struct View {
  int x = 0;
  int y = 0;
  double cell = 1;
};

struct Size {
  int width = 0;
  int height = 0;
};

View randomView(Random& random, Size size) {
  View view;
  const double most = std::min(size.width / double{kWidth}, size.height / double{kHeight});
  view.cell = std::exp(random.next() * std::log(most));
  view.x = static_cast<int>(random.next() * (size.width - view.cell * kWidth));
  view.y = static_cast<int>(random.next() * (size.height - view.cell * kHeight));
  return view;
}

/// A way to read views of the image.
class Way {
 public:
  virtual ~Way() = default;
  virtual bool open() = 0;
  virtual Size size() = 0;
  virtual bool look(const View& view) = 0;
  virtual Totals totals() = 0;
};

class Ours final : public Way {
 public:
  Ours(std::string port, std::string path) : port_(std::move(port)), path_(std::move(path)) {}

  bool open() override {
    manager_ = std::make_unique<TarnClientManager>();
    manager_->setIsServe(true);
    manager_->setServeIp("127.0.0.1");
    manager_->setPort(port_);
    return manager_->setCurImg(path_);
  }
  Size size() override { return {manager_->imgWei(), manager_->imgHei()}; }
  bool look(const View& v) override {
    return manager_->updateImage(v.x, v.y, kWidth, kHeight, v.cell, v.cell, nullptr);
  }
  Totals totals() override {
    const tarn::client::HttpTotals totals = tarn::client::httpTotals();
    return {static_cast<double>(totals.requests), static_cast<double>(totals.bytes)};
  }

 private:
  std::string port_;
  std::string path_;
  std::unique_ptr<TarnClientManager> manager_;
};

/// How GDAL is asked for a view.
enum class Asking {
  kLevel,     ///< from the level that has all the detail of the view, as ours, averaged to it
  kPixels,    ///< the same level's pixels under the view as they are: the least that GDAL can do
  kOwnChoice  ///< as it does by itself: also from a level up to 1.2 times as coarse as the view
};

class Gdal final : public Way {
 public:
  Gdal(const std::string& port, const std::string& path, Asking asking)
      : name_("/vsicurl/http://127.0.0.1:" + port + "/" + path), asking_(asking) {
    const char* const settings[][2] = {{"GDAL_DISABLE_READDIR_ON_OPEN", "EMPTY_DIR"},
                                       {"CPL_VSIL_CURL_ALLOWED_EXTENSIONS", ".tif"},
                                       {"GDAL_HTTP_MULTIPLEX", "YES"},
                                       {"GDAL_HTTP_MERGE_CONSECUTIVE_RANGES", "YES"},
                                       {"GDAL_NUM_THREADS", "ALL_CPUS"},
                                       {"GDAL_CACHEMAX", "256"},
                                       {"CPL_VSIL_NETWORK_STATS_ENABLED", "YES"}};
    for (const auto& [key, value] : settings) CPLSetConfigOption(key, value);
    GDALRegister_GTiff();
  }

  bool open() override {
    levels_.clear();
    dataset_.reset();
    VSICurlClearCache();
    dataset_ = openWith({});
    return dataset_ != nullptr;
  }
  Size size() override { return {dataset_->GetRasterXSize(), dataset_->GetRasterYSize()}; }

  bool look(const View& v) override {
    const int level = static_cast<int>(std::floor(std::log2(v.cell))) - 1;
    if (asking_ == Asking::kOwnChoice) return read(*dataset_, v, 1);
    auto& opened = levels_[std::max(level, -1)];
    if (!opened)
      opened = openWith("OVERVIEW_LEVEL=" +
                        (level < 0 ? std::string("NONE") : std::to_string(level) + "only"));
    return opened && read(*opened, v, std::ldexp(1.0, std::max(level, -1) + 1));
  }
  Totals totals() override {
    // The first of each is the sum of all that follow in parts. Batches of ranges are not counted
    // as requests.
    char* text = VSINetworkStatsGetAsSerializedJSON(nullptr);
    const std::string json = text ? text : "";
    VSIFree(text);
    Totals totals;
    const auto number = [&json](const char* key) {
      const size_t at = json.find(key);
      return at == std::string::npos ? 0.0 : CPLAtof(json.c_str() + at + std::strlen(key));
    };
    const size_t methods = json.find("\"methods\"");
    if (methods == std::string::npos) return totals;
    totals.requests = number("\"count\":");
    totals.bytes = number("\"downloaded_bytes\":");
    return totals;
  }

 private:
  std::unique_ptr<GDALDataset> openWith(const std::string& option) const {
    const char* options[] = {option.empty() ? nullptr : option.c_str(), nullptr};
    return std::unique_ptr<GDALDataset>(
        GDALDataset::Open(name_.c_str(), GDAL_OF_RASTER, nullptr, options));
  }

  /// `factor`: image pixels to one of the dataset.
  bool read(GDALDataset& dataset, const View& v, double factor) {
    const auto at = [factor](double pixels) { return static_cast<int>(pixels / factor); };
    const int width = at(v.cell * kWidth), height = at(v.cell * kHeight);
    const bool asTheyAre = asking_ == Asking::kPixels;
    const int columns = asTheyAre ? width : kWidth, rows = asTheyAre ? height : kHeight;
    pixels_.resize(size_t{3} * columns * rows);
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.eResampleAlg = asTheyAre ? GRIORA_NearestNeighbour : GRIORA_Average;
    int bands[] = {1, 2, 3};
    return dataset.RasterIO(GF_Read, at(v.x), at(v.y), width, height, pixels_.data(), columns, rows,
                            GDT_Byte, 3, bands, 3, 3 * columns, 1, &extra) == CE_None;
  }

  std::string name_;
  std::unique_ptr<GDALDataset> dataset_;
  std::map<int, std::unique_ptr<GDALDataset>> levels_;
  std::vector<uint8_t> pixels_;
  Asking asking_;
};

/// One number of requests, bytes and milliseconds.
void print(const Totals& before, const Totals& after, double ms) {
  std::printf("\t%.0f\t%.0f\t%.1f", after.requests - before.requests, after.bytes - before.bytes,
              ms);
}

/// A line a view: the view, then requests, bytes and time with the image opened for it, with it
/// open, and again.
void compare(Way& cold, Way& warm, int views) {
  if (!warm.open()) std::exit(1);
  Random random;
  for (int i = 0; i < views; ++i) {
    const View view = randomView(random, warm.size());
    std::printf("%.2f", view.cell);
    const auto measure = [&](Way& way, bool opens) {
      const Totals before = way.totals();
      const double ms = milliseconds([&] { return (!opens || way.open()) && way.look(view); });
      print(before, way.totals(), ms);
    };
    measure(cold, true);
    measure(warm, false);
    measure(warm, false);
    std::printf("\n");
  }
}

/// A drafter: a view, a pause, now and then elsewhere. Prints what each view took.
void draft(Way& way, uint64_t seed, int views, int pauseMs) {
  if (!way.open()) std::exit(1);
  Random random;
  for (uint64_t i = 0; i < seed * 97; ++i) random.next();
  for (int i = 0; i < views; ++i) {
    const View view = randomView(random, way.size());
    const Totals before = way.totals();
    const double ms = milliseconds([&] { return way.look(view); });
    std::printf("%.2f", view.cell);
    print(before, way.totals(), ms);
    std::printf("\n");
    std::this_thread::sleep_for(
        std::chrono::milliseconds(static_cast<int>(2 * pauseMs * random.next())));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fprintf(stderr,
                 "usage: bench_server ours|level|pixels|own PORT PATH VIEWS [SEED PAUSE_MS]\n");
    return 2;
  }
  const std::string port = argv[2], path = argv[3];
  const auto make = [&]() -> std::unique_ptr<Way> {
    const std::string way = argv[1];
    if (way == "level") return std::make_unique<Gdal>(port, path, Asking::kLevel);
    if (way == "pixels") return std::make_unique<Gdal>(port, path, Asking::kPixels);
    if (way == "own") return std::make_unique<Gdal>(port, path, Asking::kOwnChoice);
    return std::make_unique<Ours>(port, path);
  };
  const std::unique_ptr<Way> cold = make(), warm = make();
  if (argc > 6) {
    draft(*warm, std::strtoull(argv[5], nullptr, 10), std::atoi(argv[4]), std::atoi(argv[6]));
  } else {
    compare(*cold, *warm, std::atoi(argv[4]));
  }
  return 0;
}
