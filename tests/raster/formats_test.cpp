#include <gtest/gtest.h>

#include "base/text.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

struct Format {
  const char* name;
  const char* file;
  int channels;
  FileForm form;
};

std::vector<Format> formats() {
  std::vector<Format> all;
  for (const int channels : {1, 3}) {
    const std::string ycc = channels == 3 ? "PHOTOMETRIC=YCBCR" : "PHOTOMETRIC=MINISBLACK";
    all.push_back({"raw strips", "a.tif", channels, {"GTiff", {"BLOCKYSIZE=7"}}});
    all.push_back({"raw one strip", "a.tif", channels, {"GTiff", {"BLOCKYSIZE=777"}}});
    all.push_back({"raw big-endian BigTIFF",
                   "a.tif",
                   channels,
                   {"GTiff", {"ENDIANNESS=BIG", "BIGTIFF=YES"}}});
    all.push_back({"raw tiles",
                   "a.tif",
                   channels,
                   {"GTiff", {"TILED=YES", "BLOCKXSIZE=128", "BLOCKYSIZE=64"}}});
    all.push_back({"raw planes", "a.tif", channels, {"GTiff", {"INTERLEAVE=BAND"}}});
    all.push_back(
        {"deflate strips", "a.tif", channels, {"GTiff", {"COMPRESS=DEFLATE", "PREDICTOR=2"}}});
    all.push_back(
        {"deflate tiles", "a.tif", channels, {"GTiff", {"COMPRESS=DEFLATE", "TILED=YES"}}});
    all.push_back({"LZW strips", "a.tif", channels, {"GTiff", {"COMPRESS=LZW", "BLOCKYSIZE=100"}}});
    all.push_back({"LZW planes",
                   "a.tif",
                   channels,
                   {"GTiff", {"COMPRESS=LZW", "INTERLEAVE=BAND", "TILED=YES"}}});
    all.push_back(
        {"JPEG tiles", "a.tif", channels, {"GTiff", {"COMPRESS=JPEG", "TILED=YES", ycc}}});
    all.push_back(
        {"JPEG strips", "a.tif", channels, {"GTiff", {"COMPRESS=JPEG", "BLOCKYSIZE=16", ycc}}});
    all.push_back(
        {"JPEG tiles, RGB inside", "a.tif", channels, {"GTiff", {"COMPRESS=JPEG", "TILED=YES"}}});
    all.push_back({"JPEG without shared tables",
                   "a.tif",
                   channels,
                   {"GTiff", {"COMPRESS=JPEG", "TILED=YES", "JPEGTABLESMODE=0", ycc}}});
    all.push_back({"IMG", "a.img", channels, {"HFA", {}}});
    all.push_back({"IMG compressed", "a.img", channels, {"HFA", {"COMPRESSED=YES"}}});
    all.push_back({"JPG", "a.jpg", channels, {"JPEG", {"QUALITY=90"}}});
    all.push_back({"JPG progressive", "a.jpg", channels, {"JPEG", {"PROGRESSIVE=YES"}}});
  }
  return all;
}

TEST(Formats, EveryPixelIsGdals) {
  for (const Format& format : formats()) {
    SCOPED_TRACE(std::string(format.name) + ", channels " + std::to_string(format.channels));
    const Scratch scratch;
    const std::string path = scratch / format.file;
    writePicture(path, texture(1301, 777, format.channels), format.form);
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(readAll(*image), readByGdal(path)), 0);
    // The same through small windows that begin anywhere.
    const Picture whole = readByGdal(path);
    for (const int step : {0, 1, 2, 3}) {
      const int x = 331 * step, y = 197 * step;
      const Picture part = readWindow(*image, {double(x), double(y), 1, 1, 97, 61});
      EXPECT_EQ(part.at(5, 7)[1], whole.at(x + 5, y + 7)[whole.channels == 1 ? 0 : 1]);
      EXPECT_EQ(part.at(96, 60)[2], whole.at(x + 96, y + 60)[whole.channels == 1 ? 0 : 2]);
    }
  }
}

TEST(Formats, ThreeBandsWithoutNamesAreRedGreenAndBlue) {
  const Scratch scratch;
  const std::string path = scratch / "unnamed.tif";
  writePicture(path, texture(300, 200, 3), {"GTiff", {"PHOTOMETRIC=MINISBLACK"}, true, false});
  const auto image = openImage(path);
  ASSERT_TRUE(image);
  EXPECT_EQ(largestDifference(readAll(*image), readByGdal(path)), 0);
}

TEST(Formats, SparseTilesAreBlack) {
  const Scratch scratch;
  const std::string path = scratch / "a.tif";
  Picture picture = texture(512, 512, 3);
  for (int y = 0; y < 256; ++y) std::fill(picture.at(0, y), picture.at(256, y), 0);
  for (const char* compression : {"COMPRESS=NONE", "COMPRESS=JPEG"}) {
    writePicture(path, picture, {"GTiff", {"TILED=YES", "SPARSE_OK=TRUE", compression}});
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_EQ(largestDifference(readAll(*image), readByGdal(path)), 0) << compression;
  }
}

TEST(Formats, OwnOverviewsAreUsed) {
  const Scratch scratch;
  for (const char* compression : {"NONE", "DEFLATE"}) {
    const std::string path = scratch / (std::string(compression) + ".tif");
    writePicture(
        path, smooth(3000, 2000, 3),
        {"COG",
         {std::string("COMPRESS=") + compression, "OVERVIEW_RESAMPLING=AVERAGE", "BLOCKSIZE=256"}});
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_GE(image->levelCount(), 4U);
    EXPECT_TRUE(image->hasPyramid({scratch.folder(), ""}));
    const Picture half = readWindow(*image, {0, 0, 2, 2, 1500, 1000});
    EXPECT_EQ(largestDifference(half, readByGdal(path, 0)), 0);
  }
}

}  // namespace
}  // namespace tarn::raster
