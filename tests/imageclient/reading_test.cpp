// Images read from a real web server: the same picture as from the disk, and what it costs.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "base/file.h"
#include "client.h"
#include "components/raster/rasterimage.h"
#include "components/raster/remotetilereader.h"
#include "components/raster/tilecache.h"
#include "faultserver.h"
#include "imageclient/http.h"
#include "imageclient/httpsource.h"
#include "images.h"
#include "tests/support/recordinginterface.h"
#include "webserver.h"

namespace tarn::test {
namespace {

using client::httpTotals;
using client::HttpTotals;
using raster::RasterImage;
using raster::ReadCounts;

/// The store of an office: a folder with images of several kinds.
class Store {
 public:
  static Store& shared() {
    static Store instance;
    return instance;
  }
  std::string path(const std::string& name) const { return scratch_.at("store/" + name); }
  const std::string& root() const { return root_; }
  bool isMade() const { return made_; }

 private:
  Store() : root_(scratch_.at("store")) {
    const Raster ground = groundPicture(2900, 2300);
    const std::string plain = scratch_.at("plain.tif"), jpeg = scratch_.at("jpeg.tif");
    const std::string inner = path("城区 2026"), odd = scratch_.at("100% 正射.tif");
    made_ = makeFolders(inner).isOk() && writeRaster(ground, plain) && writeRaster(ground, jpeg) &&
            writeRaster(groundPicture(700, 500), odd) && convertToCog(plain, root_) &&
            convertToCog(jpeg, root_, {"--compression", "jpeg"}) && convertToCog(odd, inner);
    // Kinds that go through GDAL's decoders, with masks, more bits, and rotation.
    const auto translate = [&](const std::string& name, std::vector<std::string> words) {
      words.insert(words.begin(), {"-q", "-of", "COG", "-co", "BLOCKSIZE=256"});
      words.insert(words.end(), {plain, path(name)});
      made_ = made_ && runProgram("/usr/bin/gdal_translate", words).exitCode == 0;
    };
    translate("alpha.tif", {"-b", "1", "-b", "2", "-b", "3", "-b", "1", "-colorinterp_4", "alpha"});
    translate("mask.tif", {"-mask", "1", "-co", "COMPRESS=JPEG"});
    translate("bits16.tif", {"-ot", "UInt16", "-scale", "0", "255", "100", "9000", "-b", "2"});
    translate(
        "turned.tif",
        {"-gcp", "0",    "0",    "500000", "3400000", "-gcp", "2900", "0",    "501160", "3400870",
         "-gcp", "2900", "2300", "501850", "3399950", "-gcp", "0",    "2300", "500690", "3399080"});
  }

  Scratch scratch_{"tarnstore"};
  std::string root_;
  bool made_ = false;
};

/// Parts of two pictures in per mille that differ by more than 2 of 255 in some channel.
int perMilleDifferent(const uint8_t* a, const uint8_t* b, size_t pixels) {
  size_t different = 0;
  for (size_t i = 0; i < pixels; ++i) {
    int most = 0;
    for (size_t c = 0; c < 3; ++c) most = std::max(most, std::abs(a[3 * i + c] - b[3 * i + c]));
    different += most > 2;
  }
  return static_cast<int>((1000 * different + pixels - 1) / pixels);
}

class Reading : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Store::shared().isMade());
    recorded() = {};
    RecordingInterface::registerSelf();
    TarnClientManager::setTimes({});
  }
};

TEST_F(Reading, ServerImagesLookAsLocalOnes) {
  const Store& store = Store::shared();
  WebServer server(store.root());
  ASSERT_TRUE(server.isUp());
  for (const std::string name : {"plain.tif", "jpeg.tif", "alpha.tif", "mask.tif", "bits16.tif",
                                 "turned.tif", "城区 2026/100% 正射.tif"}) {
    SCOPED_TRACE(name);
    auto local = RasterImage::open(store.path(name), {});
    ASSERT_TRUE(local) << local.message();
    const RasterImage& image = *local.value();
    auto manager = clientOf(server.portText());
    ASSERT_TRUE(manager->connectServe()) << manager->error().str();
    ASSERT_TRUE(manager->setCurImg(name)) << manager->error().str();
    ASSERT_EQ(manager->imgWei(), image.width());
    ASSERT_EQ(manager->imgHei(), image.height());
    const raster::GeoTransform& t = image.geoTransform();
    EXPECT_THAT(std::vector<double>(manager->getTfwData(), manager->getTfwData() + 6),
                testing::ElementsAre(t.a, 0, 0, t.e, t.x0, t.y0));
    const raster::Window windows[] = {{0, 0, 1, 1, 400, 300},
                                      {37, 53, 2.7, 2.7, 200, 150},
                                      {-40, -40, 7, 7, 420, 340},
                                      {100, 100, 0.5, 0.5, 300, 200}};
    for (const raster::Window& window : windows) {
      std::vector<uint8_t> expected(static_cast<size_t>(window.columns) * window.rows * 3);
      ReadCounts counts;
      ASSERT_TRUE(image.read(window, false, expected.data(), counts));
      unsigned char* pixels = nullptr;
      ASSERT_TRUE(manager->updateImage(static_cast<int>(window.x), static_cast<int>(window.y),
                                       window.columns, window.rows, window.cellX, window.cellY,
                                       &pixels))
          << manager->error().str();
      EXPECT_LE(perMilleDifferent(pixels, expected.data(), expected.size() / 3), 1);
      EXPECT_EQ(perMilleDifferent(pixels, manager->getMaybeImgData(), expected.size() / 3), 0);
      AbsImageClient::freeBuffer(pixels);
    }
  }
  EXPECT_THAT(recorded().messages, testing::IsEmpty());
}

/// The compressed bytes of the tiles that a window needs, of the level that it is read from.
uint64_t bytesUnder(const std::string& file, const raster::Window& w) {
  RandomFile bytes;
  EXPECT_TRUE(bytes.open(file));
  const auto directories = raster::readTiffDirectories(bytes, fileTimes(file).size);
  const raster::TiffDirectory& full = directories.value().front();
  const raster::TiffDirectory* best = &full;
  for (const raster::TiffDirectory& d : directories.value()) {
    if (d.width < best->width && full.width / static_cast<double>(d.width) <= w.cellX * 1.000001)
      best = &d;
  }
  const double factor = full.width / static_cast<double>(best->width);
  const auto edge = [&](double at, uint32_t side) {
    return std::clamp(static_cast<int>(at / factor), 0, static_cast<int>(side) - 1);
  };
  const int left = edge(w.x, best->width), top = edge(w.y, best->height);
  const int right = edge(w.x + w.cellX * w.columns - 1e-6, best->width),
            bottom = edge(w.y + w.cellY * w.rows - 1e-6, best->height);
  uint64_t total = 0;
  for (const raster::ByteRange& range :
       raster::rangesOf(*best, left, top, right - left + 1, bottom - top + 1))
    total += range.size;
  return total;
}

TEST_F(Reading, AViewCostsItsTilesAndASecondLookNothing) {
  const Store& store = Store::shared();
  WebServer server(store.root());
  ASSERT_TRUE(server.isUp());
  for (const std::string name : {"plain.tif", "jpeg.tif"}) {
    SCOPED_TRACE(name);
    auto manager = clientOf(server.portText());
    const HttpTotals start = httpTotals();
    ASSERT_TRUE(manager->setCurImg(name)) << manager->error().str();
    EXPECT_EQ(httpTotals().requests - start.requests, 1U) << "one request for the directories";
    EXPECT_LE(httpTotals().bytes - start.bytes, 64U << 10);
    uint64_t needed = 0;
    const HttpTotals opened = httpTotals();
    const raster::Window windows[] = {
        {1300, 700, 1, 1, 900, 700}, {0, 0, 2.2, 2.2, 1000, 800}, {0, 0, 5, 5, 580, 460}};
    const auto look = [&](const raster::Window& w) {
      return manager->updateImage(static_cast<int>(w.x), static_cast<int>(w.y), w.columns, w.rows,
                                  w.cellX, w.cellY, nullptr);
    };
    for (const raster::Window& window : windows) {
      ASSERT_TRUE(look(window));
      needed += bytesUnder(store.path(name), window);
    }
    const HttpTotals seen = httpTotals();
    EXPECT_LE(static_cast<double>(seen.bytes - opened.bytes), 1.2 * static_cast<double>(needed));
    EXPECT_LE(seen.requests - opened.requests, 3U + 5U + 3U) << "tiles of a row come together";
    for (const raster::Window& window : windows) ASSERT_TRUE(look(window));
    // Neither does one whose decoded tiles have had to make room.
    raster::TileCache::shared().clear();
    ASSERT_TRUE(look(windows[0]));
    EXPECT_EQ(httpTotals().requests, seen.requests);
  }
}

TEST_F(Reading, LongDirectoriesCostOneRequestMore) {
  Scratch scratch("tarnlong");
  const std::string small = scratch.at("small.tif"), root = scratch.at("store");
  ASSERT_TRUE(makeFolders(root));
  ASSERT_TRUE(writeRaster(groundPicture(300, 300), small));
  // 2,209 tiles of full size: 24 kB of directories.
  ASSERT_EQ(
      runProgram("/usr/bin/gdal_translate",
                 {"-q", "-of", "COG", "-co", "BLOCKSIZE=128", "-co", "COMPRESS=DEFLATE", "-co",
                  "LEVEL=1", "-b", "1", "-outsize", "6000", "6000", small, root + "/long.tif"})
          .exitCode,
      0);
  WebServer server(root);
  ASSERT_TRUE(server.isUp());
  auto manager = clientOf(server.portText());
  const HttpTotals before = httpTotals();
  ASSERT_TRUE(manager->setCurImg("long.tif")) << manager->error().str();
  EXPECT_EQ(httpTotals().requests - before.requests, 2U);
  EXPECT_LE(httpTotals().bytes - before.bytes, 48U << 10);
}

TEST_F(Reading, TilesOfTurnedImagesComeTogether) {
  FaultServer server(readFile(Store::shared().path("turned.tif"), 64 << 20).take());
  auto manager = clientOf(server.port());
  ASSERT_TRUE(manager->setCurImg("image.tif")) << manager->error().str();
  server.waitForCompany(3, 400);
  const int before = server.requests();
  ASSERT_TRUE(manager->updateImage(900, 900, 900, 700, 1, 1, nullptr)) << manager->error().str();
  EXPECT_GE(server.mostAtOnce(), 3);
  const int needed = server.requests() - before;
  EXPECT_LE(needed, 12) << "neighbouring tiles are one range";
  ASSERT_TRUE(manager->updateImage(900, 900, 900, 700, 1, 1, nullptr));
  EXPECT_EQ(server.requests() - before, needed);
}

TEST_F(Reading, AFileThatChangesIsReadAnewAsAWhole) {
  Scratch scratch("tarnchange");
  const std::string root = scratch.at("store"), image = scratch.at("image.tif");
  // Times of files count in seconds.
  const auto publish = [&](int width, int seed) {
    if (!writeRaster(groundPicture(width, 700, seed), image) || !convertToCog(image, root))
      return false;
    const std::filesystem::path made = root + "/image.tif";
    std::filesystem::last_write_time(
        made, std::filesystem::last_write_time(made) + std::chrono::seconds(5 * seed));
    return true;
  };
  ASSERT_TRUE(makeFolders(root));
  ASSERT_TRUE(publish(900, 1));
  WebServer server(root);
  ASSERT_TRUE(server.isUp());
  ClientTimes times;
  times.believed = 0;
  TarnClientManager::setTimes(times);
  auto manager = clientOf(server.portText());
  int calls = 0;
  manager->setAds_name(&calls);
  manager->setUpdFunc([](void* name) { return ++*static_cast<int*>(name); });
  ASSERT_TRUE(manager->setCurImg("image.tif"));
  ASSERT_TRUE(manager->updateImage(0, 0, 400, 300, 1, 1, nullptr));
  const std::vector<uint8_t> old(manager->getMaybeImgData(),
                                 manager->getMaybeImgData() + 400 * 300 * 3);
  ASSERT_TRUE(publish(900, 2));
  ASSERT_TRUE(manager->updateImage(0, 0, 400, 300, 1, 1, nullptr)) << manager->error().str();
  EXPECT_EQ(calls, 1);
  EXPECT_GT(perMilleDifferent(old.data(), manager->getMaybeImgData(), 400 * 300), 500);
  const auto local = RasterImage::open(root + "/image.tif", {});
  std::vector<uint8_t> expected(400 * 300 * 3);
  ReadCounts counts;
  ASSERT_TRUE(local.value()->read({0, 0, 1, 1, 400, 300}, false, expected.data(), counts));
  EXPECT_EQ(perMilleDifferent(expected.data(), manager->getMaybeImgData(), 400 * 300), 0);
  // A window of the old size says nothing about an image of another: the callback has it redrawn.
  ASSERT_TRUE(publish(1100, 3));
  EXPECT_FALSE(manager->updateImage(0, 0, 400, 300, 1, 1, nullptr));
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(manager->imgWei(), 1100);
  EXPECT_TRUE(manager->updateImage(0, 0, 400, 300, 1, 1, nullptr));
  EXPECT_EQ(calls, 2);
  EXPECT_THAT(recorded().messages, testing::IsEmpty());
}

TEST_F(Reading, AServerThatWasAwayIsFoundAgain) {
  const Store& store = Store::shared();
  WebServer server(store.root());
  ASSERT_TRUE(server.isUp());
  ClientTimes times = shortTimes();
  times.believed = 60000;
  TarnClientManager::setTimes(times);
  auto open = clientOf(server.portText()), late = clientOf(server.portText());
  ASSERT_TRUE(open->setCurImg("plain.tif"));
  ASSERT_TRUE(open->updateImage(0, 0, 200, 200, 1, 1, nullptr));
  server.stop();
  EXPECT_TRUE(open->updateImage(0, 0, 200, 200, 1, 1, nullptr)) << "what is known needs no server";
  EXPECT_FALSE(late->setCurImg("jpeg.tif"));
  EXPECT_THAT(late->error().str(), testing::HasSubstr("jpeg.tif: its server cannot be reached"));
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(late->isReady());
  EXPECT_EQ(recorded().messages.size(), 1U) << "one message a fault";
  const uint64_t before = httpTotals().requests;
  EXPECT_FALSE(open->updateImage(1500, 1500, 200, 200, 1, 1, nullptr));
  EXPECT_EQ(httpTotals().requests, before) << "a server that keeps failing has a pause";
  ASSERT_TRUE(server.start());
  std::this_thread::sleep_for(std::chrono::milliseconds(times.pause + 50));
  EXPECT_TRUE(late->isReady()) << late->error().str();
  EXPECT_EQ(late->imgWei(), 2900);
  EXPECT_TRUE(open->updateImage(1500, 1500, 200, 200, 1, 1, nullptr)) << open->error().str();
  EXPECT_TRUE(open->error().isEmpty());
}

TEST_F(Reading, CertificatesAndLoginsAreChecked) {
  const Store& store = Store::shared();
  WebServer safe(store.root(), {true, false, "ann", "s3cret:x"});
  WebServer expired(store.root(), {true, true, {}, {}});
  ASSERT_TRUE(safe.isUp() && expired.isUp());
  const auto tryImage = [&](WebServer& server, const std::string& caFile) {
    client::ServerPlace place{"localhost", server.port(), true, caFile};
    const auto operation = std::make_shared<client::Operation>(ClientTimes{}, nullptr);
    client::HttpAnswer refusal;
    const auto source = client::HttpSource::open(place, "plain.tif", operation, refusal);
    return source ? std::string("fine") : source.message();
  };
  EXPECT_THAT(tryImage(safe, safe.caFile()), testing::HasSubstr("wants a name and a password"));
  ::setenv("TARN_IMAGE_LOGIN", ("ann:s3cret:x@localhost:" + safe.portText()).c_str(), 1);
  EXPECT_EQ(tryImage(safe, safe.caFile()), "fine");
  EXPECT_THAT(tryImage(safe, ""), testing::HasSubstr("certificate"));
  ::setenv("TARN_IMAGE_LOGIN", ("ann:wrong@localhost:" + safe.portText()).c_str(), 1);
  const std::string refused = tryImage(safe, safe.caFile());
  EXPECT_THAT(refused, testing::HasSubstr("wants a name and a password"));
  EXPECT_THAT(refused, testing::Not(testing::HasSubstr("wrong")));
  ::unsetenv("TARN_IMAGE_LOGIN");
  Scratch scratch("tarnnetrc");
  const std::string netrc = scratch.at("netrc");
  ASSERT_TRUE(writeFileAtomically(netrc, "machine localhost login ann password s3cret:x\n"));
  ::setenv("NETRC", netrc.c_str(), 1);
  EXPECT_EQ(tryImage(safe, safe.caFile()), "fine");
  ::unsetenv("NETRC");
  EXPECT_THAT(tryImage(expired, expired.caFile()), testing::HasSubstr("certificate"));
}

TEST_F(Reading, ManyClientsAtOnceSeeTheSame) {
  const Store& store = Store::shared();
  WebServer server(store.root());
  ASSERT_TRUE(server.isUp());
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  const auto local = RasterImage::open(store.path("jpeg.tif"), {});
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&, i] {
      auto manager = clientOf(server.portText());
      std::vector<uint8_t> expected(300 * 200 * 3);
      ReadCounts counts;
      const double x = i * 200;
      const bool fine =
          manager->setCurImg("jpeg.tif") &&
          manager->updateImage(static_cast<int>(x), 100, 300, 200, 2, 2, nullptr) &&
          local.value()->read({x, 100, 2, 2, 300, 200}, false, expected.data(), counts) &&
          perMilleDifferent(expected.data(), manager->getMaybeImgData(), 300 * 200) <= 1;
      wrong += !fine;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace tarn::test
