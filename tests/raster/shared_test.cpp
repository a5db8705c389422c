#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <thread>

#include "base/file.h"
#include "components/raster/tilecache.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

TilePtr tileOf(int side) {
  auto tile = std::make_shared<Tile>();
  tile->allocate(side, side, 1);
  return tile;
}

TEST(TileCache, HoldsNoMoreThanItsLimitAndForgetsTheOldest) {
  TileCache cache(8 * 100 * 100 * 4);
  for (uint32_t i = 0; i < 500; ++i) {
    cache.insert({1, 0, i}, tileOf(100));
    EXPECT_LE(cache.bytes(), cache.limit());
  }
  EXPECT_GT(cache.bytes(), cache.limit() / 2);
  EXPECT_TRUE(cache.find({1, 0, 499}));
  EXPECT_FALSE(cache.find({1, 0, 0}));
  // What was used last stays longest.
  const TilePtr used = cache.find({1, 0, 490});
  if (used) {
    for (uint32_t i = 500; i < 540; ++i) {
      cache.insert({1, 0, i}, tileOf(100));
      cache.find({1, 0, 490});
    }
    EXPECT_EQ(cache.find({1, 0, 490}), used);
  }
  cache.insert({2, 0, 1}, tileOf(10));
  cache.removeImage(1);
  EXPECT_EQ(cache.bytes(), 100U);
  cache.setLimit(0);
  EXPECT_EQ(cache.bytes(), 0U);
  cache.insert({2, 0, 2}, tileOf(100));
  EXPECT_EQ(cache.bytes(), 0U) << "a tile above the limit is not kept";
}

TEST(TileCache, IsSharedByImagesAndLeftWithThem) {
  const Scratch scratch;
  TileCache::shared().clear();
  writePicture(scratch / "a.tif", texture(2000, 1000, 3));
  {
    const auto first = openImage(scratch / "a.tif"), second = openImage(scratch / "a.tif");
    readAll(*first);
    const uint64_t one = TileCache::shared().bytes();
    EXPECT_EQ(one, 6000000U);
    readAll(*second);
    EXPECT_EQ(TileCache::shared().bytes(), 2 * one);
    ReadCounts counts;
    std::vector<uint8_t> out(300);
    EXPECT_TRUE(first->read({5, 5, 1, 1, 10, 10}, false, out.data(), counts));
    EXPECT_EQ(counts.tilesRead, 0U);
    EXPECT_EQ(counts.tilesCached, 1U);
    EXPECT_EQ(counts.pixels, 100U);
    EXPECT_EQ(counts.bytes, 0U);
  }
  EXPECT_EQ(TileCache::shared().bytes(), 0U);
}

TEST(TileCache, AJpgDoesNotStartFromTheTopWhenTheViewMovesUp) {
  const Scratch scratch;
  writePicture(scratch / "a.jpg", smooth(600, 3000, 3), {"JPEG", {}});
  const auto image = openImage(scratch / "a.jpg");
  ASSERT_TRUE(image);
  const Picture whole = readByGdal(scratch / "a.jpg");
  for (const int top : {2400, 2200, 1000, 2390}) {
    std::vector<uint8_t> out(600 * 300 * 3);
    ReadCounts counts;
    ASSERT_TRUE(image->read({0, double(top), 1, 1, 600, 300}, false, out.data(), counts));
    EXPECT_TRUE(std::equal(out.begin(), out.end(), whole.at(0, top))) << top;
    EXPECT_EQ(counts.tilesRead > 0, top == 2400) << top;
  }
}

TEST(TileCache, LargeReadsAreRightUnderASmallLimit) {
  const Scratch scratch;
  TileCache::shared().setLimit(2 << 20);
  writePicture(scratch / "a.tif", smooth(9000, 4000, 3), {"GTiff", {"COMPRESS=LZW", "TILED=YES"}});
  const auto image = openImage(scratch / "a.tif");
  const Picture coarse = readWindow(*image, {0, 0, 100, 100, 90, 40});
  EXPECT_LE(TileCache::shared().bytes(), 2U << 20);
  TileCache::shared().setLimit(TileCache::kDefaultLimit);
  const Picture full = readByGdal(scratch / "a.tif");
  double sum = 0;
  for (int y = 2000; y < 2100; ++y) {
    for (int x = 4500; x < 4600; ++x) sum += full.at(x, y)[1];
  }
  EXPECT_NEAR(coarse.at(45, 20)[1], sum / 10000, 1);
}

TEST(Threads, ManyReadersOfOneImage) {
  const Scratch scratch;
  const FileForm forms[] = {{"GTiff", {}},
                            {"GTiff", {"COMPRESS=DEFLATE"}},
                            {"GTiff", {"COMPRESS=JPEG", "TILED=YES"}},
                            {"HFA", {}},
                            {"JPEG", {}}};
  for (const FileForm& form : forms) {
    const std::string path =
        scratch / ("a" + form.driver + std::to_string(form.options.size()) + ".x");
    writePicture(path, texture(900, 700, 3), form);
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    const Picture whole = readByGdal(path);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 6; ++t) {
      threads.emplace_back([&, t] {
        std::vector<uint8_t> out(60 * 50 * 3);
        for (int i = 0; i < 40; ++i) {
          const int x = (t * 131 + i * 67) % 840, y = (t * 71 + i * 41) % 650;
          if (i % 10 == 0) TileCache::shared().clear();
          ReadCounts counts;
          if (!image->read({double(x), double(y), 1, 1, 60, 50}, false, out.data(), counts))
            ++wrong;
          for (int r = 0; r < 50; ++r)
            wrong += !std::equal(&out[r * 180], &out[r * 180] + 180, whole.at(x, y + r));
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0) << form.driver;
  }
}

/// Every window by every way to sample and stretch.
std::vector<std::vector<uint8_t>> readEveryWay(const RasterImage& image, int from) {
  constexpr std::array kCells = {1.0, 0.4, 1.7, 4.3, 2.0};
  constexpr std::array kModes = {StretchMode::kNone, StretchMode::kEqualise,
                                 StretchMode::kDeviations};
  constexpr int kWays = 30;
  std::vector<std::vector<uint8_t>> results(kWays);
  for (int n = 0; n < kWays; ++n) {
    const int way = (n + from) % kWays;
    const double cell = kCells[way % 5];
    std::vector<uint8_t> out(60 * 50 * 3);
    ReadCounts counts;
    EXPECT_TRUE(
        image.read({way * 17.3, way * 9.1, cell, cell, 60, 50}, way % 2 == 1, out.data(), counts));
    image.stretch(kModes[way / 10], out.data(), 60 * 50);
    results[way] = out;
  }
  return results;
}

TEST(Threads, GiveTheSameBytesAsOne) {
  const FileForm forms[] = {{"GTiff", {}},
                            {"GTiff", {"TILED=YES"}},
                            {"GTiff", {"COMPRESS=LZW"}},
                            {"GTiff", {"COMPRESS=JPEG", "TILED=YES"}},
                            {"HFA", {}},
                            {"JPEG", {}}};
  for (const FileForm& form : forms) {
    for (const bool pyramid : {false, true}) {
      const Scratch scratch;
      const std::string path = scratch / "a";
      writePicture(path, texture(900, 700, 3), form);
      if (pyramid) {
        ASSERT_TRUE(buildFor(path));
      }
      const auto expected = readEveryWay(*openImage(path), 0);
      const auto image = openImage(path);
      ASSERT_EQ(image->levelCount(), pyramid ? 3U : 1U);
      std::atomic<int> wrong{0};
      std::vector<std::thread> threads;
      for (int t = 0; t < 5; ++t) {
        threads.emplace_back([&, t] {
          for (int round = 0; round < 2; ++round) {
            wrong += readEveryWay(*image, t * 7) != expected;
            if (t == 0) TileCache::shared().clear();
          }
        });
      }
      for (std::thread& thread : threads) thread.join();
      EXPECT_EQ(wrong, 0) << form.driver << pyramid;
    }
  }
}

TEST(OpenImage, ChangedOnTheDisk) {
  const Scratch scratch;
  const std::string path = scratch / "a.tif";
  writePicture(path, texture(800, 600, 3));
  const std::string bytes = readFile(path, 1 << 24).value();
  const FileTimes times = fileTimes(path);
  std::vector<uint8_t> out(800 * 600 * 3);
  const auto read = [&](const RasterImage& image) {
    ReadCounts counts;
    std::fill(out.begin(), out.end(), uint8_t{50});
    const Status done = image.read({0, 0, 1, 1, 800, 600}, false, out.data(), counts);
    EXPECT_EQ(done.isOk(), *std::max_element(out.begin(), out.end()) != 0);
    return done.message();
  };
  const auto image = openImage(path);
  EXPECT_EQ(read(*image), "");
  std::filesystem::resize_file(std::filesystem::u8path(path), 1000);
  EXPECT_NE(read(*image).find("has been changed"), std::string::npos) << "cut short";
  ASSERT_TRUE(removeAll(path));
  EXPECT_NE(read(*image).find("not there"), std::string::npos) << "deleted";
  writeText(path, bytes);
  EXPECT_NE(fileTimes(path).modifiedNs, times.modifiedNs);
  EXPECT_NE(read(*image).find("has been changed"), std::string::npos) << "replaced";
  EXPECT_EQ(read(*openImage(path)), "");
}

}  // namespace
}  // namespace tarn::raster
