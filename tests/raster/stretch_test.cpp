#include "components/raster/stretch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "components/raster/tilecache.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

bool isKey(const uint8_t* p) {
  return (p[0] == 0 && p[1] == 0 && p[2] == 0) || (p[0] == 255 && p[1] == 255 && p[2] == 255);
}

/// How often each value occurs in one channel of a picture's content.
std::array<double, 256> contentOf(const Picture& p, int channel) {
  std::array<double, 256> counts{};
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      const uint8_t* pixel = p.at(x, y);
      const uint8_t rgb[3] = {pixel[0], pixel[p.channels == 1 ? 0 : 1],
                              pixel[p.channels == 1 ? 0 : 2]};
      if (!isKey(rgb)) ++counts[rgb[channel]];
    }
  }
  return counts;
}

/// The stretched value by its definition.
double expectedValue(const std::array<double, 256>& content, StretchMode mode, int value) {
  double count = 0, lowest = 0, atOrBelow = 0, mean = 0, variance = 0;
  for (int v = 0; v < 256; ++v) {
    if (lowest == 0) lowest = content[v];
    if (v <= value) atOrBelow += content[v];
    count += content[v];
    mean += v * content[v];
  }
  if (count == 0 || lowest == count) return value;
  mean /= count;
  for (int v = 0; v < 256; ++v) variance += (v - mean) * (v - mean) * content[v] / count;
  const double spread = 4 * std::sqrt(variance);
  const double share = mode == StretchMode::kEqualise ? (atOrBelow - lowest) / (count - lowest)
                                                      : (value - mean) / spread + 0.5;
  return std::clamp(share * 255, 1.0, 254.0);
}

void expectStretched(const Picture& plain, const Picture& stretched, const Picture& sample,
                     StretchMode mode) {
  for (int c = 0; c < 3; ++c) {
    const auto content = contentOf(sample, c);
    std::array<double, 256> expected{};
    for (int v = 0; v < 256; ++v) expected[v] = expectedValue(content, mode, v);
    double worst = 0;
    for (int y = 0; y < plain.height; ++y) {
      for (int x = 0; x < plain.width; ++x) {
        const uint8_t *from = plain.at(x, y), *to = stretched.at(x, y);
        ASSERT_EQ(isKey(from), isKey(to)) << x << ' ' << y;
        const double wanted = isKey(from) ? from[c] : expected[from[c]];
        worst = std::max(worst, std::fabs(wanted - to[c]));
      }
    }
    EXPECT_LE(worst, 2) << "channel " << c;
  }
}

Picture stretchedCopy(const RasterImage& image, const Picture& plain, StretchMode mode) {
  Picture copy = plain;
  image.stretch(mode, copy.pixels.data(), copy.pixels.size() / 3);
  return copy;
}

/// Dark and flat, with ragged pure black and pure white corners.
Picture flatWithRims(int channels) {
  Picture picture = texture(700, 500, channels);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      for (int c = 0; c < channels; ++c)
        picture.at(x, y)[c] = uint8_t(30 + 20 * c + picture.at(x, y)[c] / (3 + c));
      if (x + y < 200 + x % 7) std::fill_n(picture.at(x, y), channels, uint8_t{0});
      if (x - y > 400) std::fill_n(picture.at(x, y), channels, uint8_t{255});
    }
  }
  return picture;
}

constexpr StretchMode kModes[] = {StretchMode::kEqualise, StretchMode::kDeviations};

TEST(Stretch, EqualsItsDefinitionOnTheCoarsestLevel) {
  struct Case {
    const char* name;
    FileForm form;
    int channels;
    bool pyramid;
  };
  const Case cases[] = {{"rgb.tif", {}, 3, false},
                        {"gray.tif", {"GTiff", {"COMPRESS=LZW"}}, 1, false},
                        {"pyramid.tif", {}, 3, true},
                        {"graypyramid.tif", {"GTiff", {"TILED=YES"}}, 1, true},
                        {"jpeg.tif", {"GTiff", {"COMPRESS=JPEG", "TILED=YES"}}, 3, true},
                        {"a.img", {"HFA", {}}, 3, false},
                        {"a.jpg", {"JPEG", {}}, 3, false}};
  const Scratch scratch;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = scratch / c.name;
    writePicture(path, flatWithRims(c.channels), c.form);
    if (c.pyramid) {
      ASSERT_TRUE(buildFor(path));
    }
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    // Two levels below 700 x 500 pixels: 350 x 250 and 175 x 125.
    const Picture sample = c.pyramid ? readByGdal(path, 1) : readByGdal(path);
    ASSERT_EQ(sample.width, c.pyramid ? 175 : 700);
    for (const double cell : {1.0, 2.6}) {
      const Picture plain = readWindow(
          *image, {-3, -2, cell, cell, int(700 / cell) + 5, int(500 / cell) + 5}, cell > 1);
      for (const StretchMode mode : kModes)
        expectStretched(plain, stretchedCopy(*image, plain, mode), sample, mode);
      EXPECT_EQ(stretchedCopy(*image, plain, StretchMode::kNone).pixels, plain.pixels);
    }
  }
}

TEST(Stretch, ALargeLevelIsSampledEvenly) {
  // More than a sample takes, without a pyramid: a slow wave whose parts are all different.
  const Scratch scratch;
  const Picture picture = smooth(6000, 3500, 1);
  writePicture(scratch / "a.tif", picture, {"GTiff", {"TILED=YES"}});
  const auto image = openImage(scratch / "a.tif");
  ASSERT_TRUE(image);
  const Picture plain = readWindow(*image, {0, 0, 10, 10, 600, 350});
  for (const StretchMode mode : kModes)
    expectStretched(plain, stretchedCopy(*image, plain, mode), picture, mode);
}

TEST(Stretch, NothingToStretchStaysAsItIs) {
  const Scratch scratch;
  Picture picture{90, 80, 3, std::vector<uint8_t>(90 * 80 * 3)};
  const std::array<uint8_t, 3> colours[] = {{0, 0, 0}, {255, 255, 255}, {7, 0, 255}};
  for (const auto& colour : colours) {
    for (size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = colour[i % 3];
    writePicture(scratch / "a.tif", picture);
    const auto image = openImage(scratch / "a.tif");
    ASSERT_TRUE(image);
    for (const StretchMode mode : kModes)
      EXPECT_EQ(stretchedCopy(*image, picture, mode).pixels, picture.pixels) << int(colour[0]);
  }
  // One channel of one value, the others not.
  for (size_t i = 0; i < picture.pixels.size(); ++i)
    picture.pixels[i] = i % 3 == 0 ? 0 : uint8_t(100 + i / 3 % 50);
  writePicture(scratch / "a.tif", picture);
  const auto image = openImage(scratch / "a.tif");
  for (const StretchMode mode : kModes)
    expectStretched(picture, stretchedCopy(*image, picture, mode), picture, mode);
}

TEST(Stretch, SwitchingReadsNothingAgain) {
  const Scratch scratch;
  writePicture(scratch / "a.tif", flatWithRims(3), {"GTiff", {"COMPRESS=DEFLATE"}});
  ASSERT_TRUE(buildFor(scratch / "a.tif"));
  const auto image = openImage(scratch / "a.tif");
  ASSERT_TRUE(image);
  std::vector<uint8_t> first, out(200 * 150 * 3);
  ReadCounts counts;
  for (const StretchMode mode :
       {StretchMode::kNone, StretchMode::kEqualise, StretchMode::kDeviations, StretchMode::kNone}) {
    counts = {};
    ASSERT_TRUE(image->read({10, 10, 3, 3, 200, 150}, false, out.data(), counts));
    const uint64_t held = TileCache::shared().bytes();
    image->stretch(mode, out.data(), out.size() / 3);
    EXPECT_EQ(TileCache::shared().bytes(), held);
    if (first.empty()) {
      first = out;
      EXPECT_GT(counts.tilesRead, 0U);
      continue;
    }
    EXPECT_EQ(counts.tilesRead + counts.bytes, 0U);
    EXPECT_EQ(out == first, mode == StretchMode::kNone);
  }
}

}  // namespace
}  // namespace tarn::raster
