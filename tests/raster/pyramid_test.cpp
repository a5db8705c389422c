#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <utime.h>

#include <cstdlib>

#include "base/file.h"
#include "components/raster/halving.h"
#include "components/raster/pyramidstamp.h"
#include "components/raster/tiledtiffwriter.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

struct Kind {
  const char* name;
  const char* file;
  int channels;
  FileForm form;
  bool lossy;
};

const Kind kKinds[] = {
    {"raw strips", "a.tif", 3, {"GTiff", {}}, false},
    {"raw gray tiles", "a.tif", 1, {"GTiff", {"TILED=YES"}}, false},
    {"strips of an odd height",
     "a.tif",
     3,
     {"GTiff", {"COMPRESS=DEFLATE", "BLOCKYSIZE=37"}},
     false},
    {"odd tiles", "a.tif", 3, {"GTiff", {"TILED=YES", "BLOCKXSIZE=80", "BLOCKYSIZE=48"}}, false},
    {"JPEG tiles",
     "a.tif",
     3,
     {"GTiff", {"COMPRESS=JPEG", "PHOTOMETRIC=YCBCR", "TILED=YES"}},
     true},
    {"gray JPEG tiles", "a.tif", 1, {"GTiff", {"COMPRESS=JPEG", "TILED=YES"}}, true},
    {"IMG", "a.img", 3, {"HFA", {}}, false},
    {"JPG", "a.jpg", 3, {"JPEG", {"QUALITY=95"}}, true},
};

/// Halves of halves by the plain definition, in double precision.
Picture reduced(const Picture& p, int factor) {
  Picture out{(p.width + factor - 1) / factor, (p.height + factor - 1) / factor, p.channels, {}};
  out.pixels.resize(size_t(out.width) * out.height * out.channels);
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      for (int c = 0; c < p.channels; ++c) {
        double sum = 0, count = 0;
        for (int j = y * factor; j < std::min(p.height, (y + 1) * factor); ++j) {
          for (int i = x * factor; i < std::min(p.width, (x + 1) * factor); ++i)
            sum += p.at(i, j)[c], ++count;
        }
        out.at(x, y)[c] = uint8_t(sum / count + 0.5);
      }
    }
  }
  return out;
}

TEST(Pyramid, IsAnOverviewFileThatGdalReads) {
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    const Scratch scratch;
    const std::string path = scratch / kind.file;
    writePicture(path, smooth(1500, 1103, kind.channels), kind.form);
    EXPECT_FALSE(openImage(path)->hasPyramid({scratch.folder(), ""}));
    ASSERT_TRUE(buildFor(path));
    const Picture full = readByGdal(path);
    int factor = 2;
    for (const LevelSize size : pyramidLevels(1500, 1103)) {
      const Picture level = readByGdal(path, factor == 2 ? 0 : factor == 4 ? 1 : 2);
      EXPECT_EQ(level.width, size.width);
      EXPECT_EQ(level.height, size.height);
      EXPECT_LE(largestDifference(level, reduced(full, factor)), kind.lossy ? 20 : 2) << factor;
      factor *= 2;
    }
    EXPECT_EQ(factor, 16);
    auto* dataset = GDALDataset::Open((path + ".ovr").c_str(), GDAL_OF_RASTER);
    ASSERT_NE(dataset, nullptr);
    const char* compression = dataset->GetMetadataItem("COMPRESSION", "IMAGE_STRUCTURE");
    EXPECT_EQ(compression != nullptr, kind.lossy);
    int width = 0, height = 0;
    dataset->GetRasterBand(1)->GetBlockSize(&width, &height);
    EXPECT_EQ(width, kPyramidTile);
    EXPECT_EQ(height, kPyramidTile);
    GDALClose(dataset);
    // And this library reads it too: the same pixels as GDAL's reading of the level.
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_TRUE(image->hasPyramid({scratch.folder(), ""}));
    EXPECT_EQ(image->levelCount(), 4U);
    // The last row stands for a row of the image and half a cell beyond it, so it is left out.
    Picture half = readByGdal(path, 0);
    half.height = 551;
    EXPECT_EQ(largestDifference(readWindow(*image, {0, 0, 2, 2, 750, 551}), half), 0);
    for (const std::string& name : listFolder(scratch.folder())) {
      EXPECT_EQ(name.find(".tarn"), std::string::npos) << "nothing else is left";
    }
  }
}

TEST(Pyramid, VeryLargeOnesAreBigTiffs) {
  const Picture levels[] = {smooth(700, 500, 3), smooth(350, 250, 3)};
  for (const bool lossy : {false, true}) {
    constexpr uint64_t kLarge = uint64_t{4000} << 20;
    for (const uint64_t limit : {uint64_t{1}, kLarge}) {
      const Scratch scratch;
      const std::string path = scratch / "a.ovr";
      TiledTiffWriter writer;
      TiledTiffForm form;
      form.levels = {{700, 500}, {350, 250}};
      if (lossy) form.coding.compression = TileCompression::kJpeg;
      form.classicLimit = limit;
      ASSERT_TRUE(writer.create(path, form));
      std::vector<uint8_t> tile(size_t(kPyramidTile) * kPyramidTile * 3);
      for (size_t level = 0; level < 2; ++level) {
        const Picture& p = levels[level];
        for (int i = 0; i < (level == 0 ? 6 : 2); ++i) {
          const int column = level == 0 ? i % 3 : i, row = level == 0 ? i / 3 : 0;
          for (int y = 0; y < kPyramidTile; ++y) {
            for (int x = 0; x < kPyramidTile; ++x) {
              const int px = std::min(column * kPyramidTile + x, p.width - 1),
                        py = std::min(row * kPyramidTile + y, p.height - 1);
              std::copy_n(p.at(px, py), 3, &tile[(size_t(y) * kPyramidTile + x) * 3]);
            }
          }
          ASSERT_TRUE(writer.writeTile(level, column, row, tile.data()));
        }
      }
      ASSERT_TRUE(writer.finish());
      EXPECT_TRUE(writer.check());
      EXPECT_EQ(readFile(path, 1 << 24).value()[2], limit == kLarge ? 42 : 43);
      EXPECT_LE(largestDifference(readByGdal(path), levels[0]), lossy ? 12 : 0);
      EXPECT_LE(largestDifference(readByGdal(path, 0), levels[1]), lossy ? 12 : 0);
    }
  }
}

TEST(Pyramid, LevelsGoDownToOneTile) {
  EXPECT_EQ(pyramidLevels(70000, 70000).size(), 9U);
  EXPECT_EQ(pyramidLevels(256, 256).size(), 0U);
  EXPECT_EQ(pyramidLevels(257, 1).size(), 1U);
}

TEST(Pyramid, HalvesLeaveOutBlackAndWhite) {
  const uint8_t content[3] = {10, 20, 31}, black[3] = {0, 0, 0}, white[3] = {255, 255, 255},
                dim[3] = {0, 0, 1};
  struct Case {
    const uint8_t* pixels[4];
    uint8_t expected[3];
  };
  const Case cases[] = {{{content, black, black, black}, {0, 0, 0}},
                        {{content, content, black, white}, {10, 20, 31}},
                        {{white, white, white, content}, {0, 0, 0}},
                        {{content, content, content, white}, {10, 20, 31}},
                        {{dim, black, dim, black}, {0, 0, 1}},
                        {{black, white, black, white}, {0, 0, 0}}};
  for (const Case& c : cases) {
    uint8_t source[12], out[3];
    for (int i = 0; i < 4; ++i) std::copy_n(c.pixels[i], 3, source + 3 * i);
    halve({source, 2, 2, 6, 3}, true, true, out, 3);
    EXPECT_TRUE(std::equal(out, out + 3, c.expected))
        << int(out[0]) << ' ' << int(out[1]) << ' ' << int(out[2]);
  }
  // Nearly black content averages to black by rounding, and must not.
  const uint8_t faint[12] = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1};
  uint8_t out[3];
  EXPECT_FALSE(halve({faint, 2, 2, 6, 3}, false, false, out, 3));
  EXPECT_EQ(out[0] + out[1] + out[2], 3);
}

TEST(Pyramid, DoesNotGrowBrighterFromLevelToLevel) {
  const Scratch scratch;
  const Picture picture = texture(2048, 2048, 1);
  writePicture(scratch / "a.tif", picture);
  ASSERT_TRUE(buildFor(scratch / "a.tif"));
  const auto mean = [](const Picture& p) {
    double sum = 0;
    for (const uint8_t value : p.pixels) sum += value;
    return sum / double(p.pixels.size());
  };
  EXPECT_NEAR(mean(readByGdal(scratch / "a.tif", 2)), mean(picture), 0.3);
}

class Staleness : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = scratch_ / "a.tif";
    writePicture(path_, smooth(900, 700, 3));
  }
  bool has() const { return openImage(path_)->hasPyramid({scratch_.folder(), ""}); }
  size_t levels() const { return openImage(path_)->levelCount(); }
  void setTime(const std::string& path, int64_t seconds) {
    utimbuf times{time_t(seconds), time_t(seconds)};
    ASSERT_EQ(utime(path.c_str(), &times), 0);
  }
  void buildForeign(const char* compression) {
    CPLSetThreadLocalConfigOption("COMPRESS_OVERVIEW", compression);
    auto* dataset = GDALDataset::Open(path_.c_str(), GDAL_OF_RASTER);
    int factors[2] = {2, 4};
    EXPECT_EQ(dataset->BuildOverviews("AVERAGE", 2, factors, 0, nullptr, nullptr, nullptr),
              CE_None);
    GDALClose(dataset);
    CPLSetThreadLocalConfigOption("COMPRESS_OVERVIEW", nullptr);
  }
  Scratch scratch_;
  std::string path_;
};

TEST_F(Staleness, ImageReplacedOrTouched) {
  ASSERT_TRUE(buildFor(path_));
  EXPECT_TRUE(has());
  EXPECT_EQ(levels(), 3U);
  setTime(path_, 1000000000);
  EXPECT_FALSE(has()) << "another time of change";
  EXPECT_EQ(levels(), 1U);
  ASSERT_TRUE(buildFor(path_));
  EXPECT_TRUE(has());
  const FileTimes before = fileTimes(path_);
  std::string bytes = readFile(path_, 1 << 24).value();
  bytes[bytes.size() - 5] ^= 1;
  writeText(path_, bytes);
  setTime(path_, before.modifiedNs / 1000000000);
  EXPECT_EQ(fileTimes(path_).size, before.size);
  EXPECT_FALSE(has()) << "the same size and time, but other bytes";
}

TEST_F(Staleness, DamagedOrEmptyPyramid) {
  ASSERT_TRUE(buildFor(path_));
  const std::string bytes = readFile(path_ + ".ovr", 1 << 24).value();
  for (const std::string& damaged :
       {std::string(), bytes.substr(0, 3), bytes.substr(0, bytes.size() / 2),
        std::string(bytes.size(), '\0')}) {
    writeText(path_ + ".ovr", damaged);
    EXPECT_FALSE(has()) << damaged.size();
    EXPECT_EQ(levels(), 1U);
    ASSERT_TRUE(buildFor(path_));
    EXPECT_TRUE(has());
  }
}

TEST_F(Staleness, PyramidOfAnotherProgram) {
  for (const char* compression : {"NONE", "DEFLATE", "JPEG"}) {
    ASSERT_TRUE(removeAll(path_ + ".ovr"));
    buildForeign(compression);
    EXPECT_TRUE(has()) << compression;
    ASSERT_EQ(levels(), 3U) << compression;
    const auto image = openImage(path_);
    EXPECT_EQ(largestDifference(readWindow(*image, {0, 0, 2, 2, 450, 350}), readByGdal(path_, 0)),
              0)
        << compression;
  }
  setTime(path_ + ".ovr", 1000000000);
  EXPECT_FALSE(has()) << "older than the image";
  setTime(path_, 900000000);
  EXPECT_TRUE(has());
  writePicture(path_, smooth(901, 300, 3));
  setTime(path_, 900000000);
  EXPECT_FALSE(has()) << "of another size";
}

TEST_F(Staleness, StampsAreReadBackOrRefused) {
  const ImageStamp stamp = stampOf(path_).value();
  EXPECT_TRUE(*parseStamp(formatStamp(stamp)) == stamp);
  const auto mark = markInMetadata(markMetadata({stamp, "3 1 b2", Scale{-0.1, 1e30}}));
  ASSERT_TRUE(mark);
  EXPECT_TRUE(mark->stamp == stamp);
  EXPECT_EQ(mark->form, "3 1 b2");
  ASSERT_TRUE(mark->scale);
  EXPECT_EQ(mark->scale->low, -0.1);
  EXPECT_EQ(mark->scale->high, 1e30);
  for (const char* text :
       {"", "1", "2 1 1 1", "1 1 1", "1 x 1 1", "1 1 1 1 1", "1 11111111111111111 1 1"}) {
    EXPECT_FALSE(parseStamp(text)) << text;
  }
  EXPECT_FALSE(markInMetadata("<GDALMetadata><Item name=\"TARN_STAMP\">1 1 1 1"));
}

}  // namespace
}  // namespace tarn::raster
