#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <map>
#include <set>
#include <thread>

#include "base/file.h"
#include "base/path.h"
#include "inc/callbackprogressbar.h"
#include "inc/iappmanager.h"
#include "inc/iimagedivision.h"
#include "inc/kcore.h"
#include "tests/raster/testimages.h"
#include "tests/support/recordinginterface.h"

namespace tarn::raster {
namespace {

using test::recorded;

struct RecordingProgress : CallBackProgressBar {
  void start(const char* label, int minimum, int maximum) override {
    calls.push_back(std::string(label) + " " + std::to_string(minimum) + ".." +
                    std::to_string(maximum));
  }
  void setPosition(int position) override {
    positions.push_back(position);
    threads.push_back(std::this_thread::get_id());
  }
  void end() override { calls.emplace_back("end"); }
  std::vector<std::string> calls;
  std::vector<int> positions;
  std::vector<std::thread::id> threads;
};

class ImageSource : public ::testing::Test {
 protected:
  void SetUp() override {
    test::RecordingInterface::registerSelf();
    kel::Object<IAppManager> manager("N", "test", 1);
    ASSERT_TRUE(manager->loadPlugins("plugins", 0));
    recorded() = {};
    recorded().folder = scratch_ / "cache";
    source_ = kel::Object<IImageDivision>("N", "test", 2);
    ASSERT_FALSE(source_.isNull());
    path_ = scratch_ / "航片 1.tif";
    writePicture(path_, smooth(1200, 900, 3));
  }
  bool init() { return source_->init(path_.c_str(), scratch_.folder().c_str(), false); }
  bool build() {
    return source_->buildPyramid(scratch_.folder().c_str(), 0, 3, 256.0, 256.0, 1, 100);
  }
  std::vector<uint8_t> read(double x, double y, double cell, int width, int height) {
    std::vector<uint8_t> out(size_t(width) * height * 3, 9);
    source_->announceWindow(x, y, cell, cell);
    EXPECT_TRUE(source_->readRegion(5, 6, width, height, 77, 78, out.data()));
    return out;
  }
  Scratch scratch_;
  std::string path_;
  kel::Object<IImageDivision> source_;
};

TEST_F(ImageSource, OpensReportsAndCloses) {
  ASSERT_TRUE(init());
  EXPECT_EQ(source_->width(), 1200);
  EXPECT_EQ(source_->height(), 900);
  const double expected[6] = {0.5, 0, 0, -0.5, 500000, 3400000};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(source_->geoTransform()[i], expected[i]);
  int width = 0, height = 0, code = 5;
  double x0 = 0, y0 = 0, a = 0, e = 0;
  source_->getGeoInfo(width, height, x0, y0, a, e);
  EXPECT_EQ(width, 1200);
  EXPECT_EQ(height, 900);
  EXPECT_EQ(x0, 500000);
  EXPECT_EQ(y0, 3400000);
  EXPECT_EQ(a, 0.5);
  EXPECT_EQ(e, -0.5);
  source_->coordinateSystem(code);
  EXPECT_LT(code, 0);
  source_->close();
  uint8_t out[3] = {};
  EXPECT_FALSE(source_->readRegion(0, 0, 1, 1, 1, 1, out));
  EXPECT_FALSE(build());
  EXPECT_EQ(source_->width(), 0);
  EXPECT_TRUE(init()) << "opens again";
  EXPECT_TRUE(recorded().messages.empty());
}

TEST_F(ImageSource, FailuresAreSaidOnceAndLeaveItUsable) {
  writeText(scratch_ / "bad.tif", "nothing");
  const std::string folder = scratch_.folder();
  EXPECT_FALSE(source_->init((scratch_ / "bad.tif").c_str(), folder.c_str(), false));
  EXPECT_FALSE(source_->init((scratch_ / "missing.tif").c_str(), folder.c_str(), false));
  EXPECT_FALSE(source_->init("", folder.c_str(), false));
  EXPECT_FALSE(source_->init("a.tif", "", false));
  EXPECT_FALSE(source_->init(nullptr, nullptr, false));
  EXPECT_EQ(recorded().messages.size(), 5U);
  EXPECT_NE(recorded().messages[0].find("bad.tif"), std::string::npos);
  source_->close();
  recorded().messages.clear();
  ASSERT_TRUE(init());
  ASSERT_TRUE(removeAll(path_));
  uint8_t out[12];
  for (int i = 0; i < 3; ++i) {
    std::fill_n(out, 12, uint8_t{9});
    EXPECT_FALSE(source_->readRegion(0, 0, 2, 2, 1, 1, out));
    EXPECT_EQ(*std::max_element(out, out + 12), 0);
  }
  ASSERT_EQ(recorded().messages.size(), 1U) << "one message an image";
  EXPECT_NE(recorded().messages[0].find(path_), std::string::npos);
}

TEST_F(ImageSource, BuildsThePyramidWithProgress) {
  ASSERT_TRUE(init());
  EXPECT_FALSE(source_->hasPyramid(scratch_.folder().c_str()));
  RecordingProgress progress;
  kel::Core::setProgressBar(&progress);
  EXPECT_TRUE(build());
  kel::Core::setProgressBar(nullptr);
  EXPECT_EQ(progress.calls, (std::vector<std::string>{"金字塔 航片 1.tif 1..100", "end"}));
  ASSERT_FALSE(progress.positions.empty());
  EXPECT_EQ(progress.positions.back(), 100);
  EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end()));
  for (const auto& thread : progress.threads) EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_TRUE(source_->hasPyramid(scratch_.folder().c_str()));
  source_->close();
  ASSERT_TRUE(init());
  recorded().counters.clear();
  read(0, 0, 4, 200, 200);
  EXPECT_EQ(recorded().counters["windows"], 1);
  EXPECT_EQ(recorded().counters["pixels"], 40000);
  EXPECT_EQ(recorded().counters["tiles_read"] + recorded().counters["tiles_cached"], 1)
      << "200 pixels of the level of a quarter";
  source_->setNoPyramid(true);
  recorded().counters.clear();
  read(0, 0, 4, 200, 200);
  EXPECT_GT(recorded().counters["tiles_read"], 4) << "the file itself";
}

TEST_F(ImageSource, CancellingLeavesNothing) {
  ASSERT_TRUE(init());
  recorded().cancel = true;
  EXPECT_FALSE(build());
  EXPECT_EQ(listFolder(scratch_.folder()).size(), 1U);
  EXPECT_EQ(recorded().messages.size(), 1U);
  recorded().cancel = false;
  EXPECT_TRUE(build());
}

TEST_F(ImageSource, SmallImagesNeedNoPyramid) {
  writePicture(path_, smooth(256, 200, 1));
  ASSERT_TRUE(init());
  EXPECT_TRUE(source_->hasPyramid(scratch_.folder().c_str()));
}

TEST_F(ImageSource, AnAnnouncedWindowHoldsForOneRead) {
  ASSERT_TRUE(init());
  const Picture full = readByGdal(path_);
  const auto announced = read(100, 50, 1, 4, 3);
  EXPECT_TRUE(std::equal(announced.begin(), announced.begin() + 12, full.at(100, 50)));
  std::vector<uint8_t> plain(36);
  ASSERT_TRUE(source_->readRegion(10, 20, 4, 3, 1, 1, plain.data()));
  EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + 12, full.at(10, 20)));
  ASSERT_TRUE(source_->readRegionOverview(10, 20, 4, 3, 1, plain.data()));
  EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + 12, full.at(10, 20)));
  unsigned char* target = plain.data();
  source_->announceWindow(500, 500, 9, 9);
  ASSERT_TRUE(source_->readBlock(30, 40, 4, 3, 1, 1, &target));
  EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + 12, full.at(30, 40)))
      << "blocks are not announced";
  EXPECT_FALSE(source_->readBlock(0, 0, 4, 3, 1, 1, nullptr));
  target = nullptr;
  EXPECT_FALSE(source_->readBlock(0, 0, 4, 3, 1, 1, &target));
}

/// One channel of a cell from full-size pixels: its area average when reducing; else the pixel at
/// its centre, or what lies between the four around it.
double expectedCell(const Picture& p, double x, double y, double cell, bool smooth, int channel) {
  double left = x, top = y, size = cell;
  if (cell <= 1) {
    const double u = x + cell / 2, v = y + cell / 2;
    if (!smooth) return p.at(int(u), int(v))[channel];
    // Bilinear is the average over one pixel's area around the centre.
    left = u - 0.5, top = v - 0.5, size = 1;
  }
  double sum = 0;
  for (int row = int(top); row < top + size; ++row) {
    for (int column = int(left); column < left + size; ++column) {
      sum += (std::min(left + size, column + 1.0) - std::max(left, double(column))) *
             (std::min(top + size, row + 1.0) - std::max(top, double(row))) *
             p.at(column, row)[channel];
    }
  }
  return sum / (size * size);
}

TEST_F(ImageSource, SamplingFollowsTheAntiAliasingSwitch) {
  writePicture(path_, texture(1200, 900, 3));
  ASSERT_TRUE(init());
  const Picture full = readByGdal(path_);
  for (const bool smooth : {false, true, false}) {
    source_->setAntiAliasing(smooth);
    for (const double cell : {0.3, 1.0, 1.7, 4.6}) {
      const auto cells = read(100.4, 50.7, cell, 90, 60);
      double worst = 0;
      for (int i = 0; i < 90 * 60 * 3; ++i) {
        const double exact = expectedCell(full, 100.4 + i / 3 % 90 * cell, 50.7 + i / 270 * cell,
                                          cell, smooth, i % 3);
        worst = std::max(worst, std::fabs(cells[i] - exact));
      }
      EXPECT_LE(worst, 1.6) << "cell " << cell << (smooth ? " smooth" : "");
    }
  }
}

TEST_F(ImageSource, StretchSwitchesWithoutReadingAnything) {
  ASSERT_TRUE(init());
  ASSERT_TRUE(build());
  ASSERT_TRUE(init());
  const std::string pyramid = readFile(path_ + ".ovr", 1 << 24).value();
  const auto plain = read(30, 40, 2.5, 300, 200);
  recorded().counters.clear();
  // Modes that are not known are as none.
  const std::pair<int, bool> modes[] = {{1, true}, {2, true}, {-1, false}, {1, true}, {7, false}};
  std::map<int, std::vector<uint8_t>> seen;
  for (const auto& [mode, changes] : modes) {
    source_->setStretchMode(mode);
    const auto cells = read(30, 40, 2.5, 300, 200);
    EXPECT_EQ(cells != plain, changes) << mode;
    EXPECT_EQ(seen.emplace(mode, cells).first->second, cells) << mode;
    std::vector<uint8_t> block(cells.size());
    unsigned char* target = block.data();
    ASSERT_TRUE(source_->readBlock(30, 40, 300, 200, 2.5, 2.5, &target));
    EXPECT_EQ(block, cells) << mode;
  }
  EXPECT_NE(seen.at(1), seen.at(2));
  EXPECT_EQ(recorded().counters["tiles_read"], 0);
  EXPECT_EQ(recorded().counters["bytes"], 0);
  EXPECT_EQ(readFile(path_ + ".ovr", 1 << 24).value(), pyramid);
}

TEST_F(ImageSource, BlocksOfSeveralThreadsWhileSwitchesChange) {
  writePicture(path_, texture(1200, 900, 3));
  ASSERT_TRUE(init());
  ASSERT_TRUE(build());
  ASSERT_TRUE(init());
  constexpr int kBlocks = 12, kSide = 70;
  const auto block = [&](int i) {
    std::vector<uint8_t> out(kSide * kSide * 3);
    unsigned char* target = out.data();
    const double cell = i % 3 == 0 ? 0.6 : 1.3 * (i % 3);
    EXPECT_TRUE(source_->readBlock(i * 60, i * 40, kSide, kSide, cell, cell, &target));
    return out;
  };
  // Whatever the switches are in the middle of a read, its block is one of these.
  std::vector<std::set<std::vector<uint8_t>>> possible(kBlocks);
  for (const int mode : {1, 2, -1}) {
    for (const bool smooth : {true, false}) {
      source_->setStretchMode(mode);
      source_->setAntiAliasing(smooth);
      for (int i = 0; i < kBlocks; ++i) possible[i].insert(block(i));
    }
  }
  std::atomic<int> running{4}, wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int n = 0; n < 10 * kBlocks; ++n) {
        const int i = (n + 3 * t) % kBlocks;
        wrong += possible[i].count(block(i)) == 0;
      }
      --running;
    });
  }
  for (int n = 0; running > 0; ++n) {
    source_->setStretchMode(std::array<int, 3>{1, 2, -1}[n % 3]);
    source_->setAntiAliasing(n / 3 % 2 == 0);
    std::this_thread::yield();
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST_F(ImageSource, NotesAreSaidOnceAndNameTheImage) {
  writePicture(path_, smooth(1200, 900, 2), {"GTiff", {}, false});
  ASSERT_TRUE(init());
  source_->close();
  ASSERT_TRUE(init());
  ASSERT_EQ(recorded().messages.size(), 1U);
  EXPECT_EQ(recorded().messages[0].find("航片 1.tif: "), 0U) << recorded().messages[0];
  for (const char* part : {"2 bands", "; ", "no georeferencing"})
    EXPECT_NE(recorded().messages[0].find(part), std::string::npos) << recorded().messages[0];
}

TEST_F(ImageSource, BuildingAStalePyramidAgainIsSaid) {
  ASSERT_TRUE(init());
  ASSERT_TRUE(build());
  EXPECT_TRUE(recorded().messages.empty());
  std::string bytes = readFile(path_, 1 << 24).value();
  bytes.back() ^= 1;
  writeText(path_, bytes);
  ASSERT_TRUE(init());
  EXPECT_FALSE(source_->hasPyramid(scratch_.folder().c_str()));
  ASSERT_TRUE(build());
  ASSERT_EQ(recorded().messages.size(), 1U);
  EXPECT_NE(recorded().messages[0].find("built again"), std::string::npos);
}

TEST_F(ImageSource, WorksWithoutAUserInterface) {
  kel::unregisterImplementation("N", IUserInterface::interfaceId());
  kel::Object<IImageDivision> silent("N", "test", 3);
  EXPECT_FALSE(silent->init("/missing.tif", "/", false));
  EXPECT_TRUE(silent->init(path_.c_str(), scratch_.folder().c_str(), false));
  uint8_t out[12];
  EXPECT_TRUE(silent->readRegion(0, 0, 2, 2, 1, 1, out));
  EXPECT_TRUE(recorded().messages.empty());
}

}  // namespace
}  // namespace tarn::raster
