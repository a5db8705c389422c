#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "components/raster/tilecache.h"
#include "tests/raster/warpedbygdal.h"

namespace tarn::raster {
namespace {

constexpr double kDegree = 0.017453292519943295;

/// The transform of an image turned about its upper left corner.
GeoTransform rotated(double degrees, double pixelX, double pixelY) {
  const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree);
  return {500000, c * pixelX, s * pixelY, 3400000, s * pixelX, -c * pixelY};
}

struct Pose {
  const char* name;
  GeoTransform transform;
};

const Pose kResampled[] = {
    {"rotated a little", rotated(0.7, 0.5, 0.5)},
    {"rotated by 30", rotated(30, 0.5, 0.5)},
    {"rotated by -101", rotated(-101, 2, 2)},
    {"mirrored and rotated", {0, -0.9, 0.2, 0, 0.2, -0.9}},
    {"oblong and rotated", rotated(20, 0.5, 1.5)},
    {"sheared", {1000, 1, 0.4, 2000, 0, -1}},
};

TEST(NorthUp, EqualsGdalsWarp) {
  const Scratch scratch;
  for (const int channels : {1, 3}) {
    const Picture picture = texture(331, 277, channels);
    for (const Pose& pose : kResampled) {
      SCOPED_TRACE(pose.name);
      const std::string path = scratch / "a.tif";
      writePicture(path, picture, {"GTiff", {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}});
      placeByTransform(path, pose.transform);
      const auto image = openImage(path);
      ASSERT_TRUE(image);
      EXPECT_EQ(image->geoTransform().b, 0);
      EXPECT_EQ(image->geoTransform().d, 0);
      ASSERT_EQ(image->notes().size(), 1U);
      EXPECT_NE(image->notes()[0].find("north up"), std::string::npos) << image->notes()[0];
      const Difference difference = compareWarped(readAll(*image), warpedByGdal(path, *image));
      EXPECT_LE(difference.most, 2);
      EXPECT_LE(difference.outline, 2);
      EXPECT_GT(difference.compared, 300 * 200);
    }
  }
}

TEST(NorthUp, ControlPointsEqualGdalsWarp) {
  const Scratch scratch;
  const Picture picture = texture(331, 277, 3);
  const std::string path = scratch / "a.tif";
  struct Case {
    const char* name;
    int points;
    double curve;
    double rotation;
    bool resampled;
  };
  for (const Case& c :
       {Case{"upright", 4, 0, 0, false}, Case{"rotated", 5, 0, 12, true},
        Case{"first order", 5, 9, 12, true}, Case{"second order", 16, 9, -40, true}}) {
    SCOPED_TRACE(c.name);
    writePicture(path, picture, {"GTiff", {}, false});
    const GeoTransform t = rotated(c.rotation, 0.5, 0.5);
    std::vector<ControlPoint> points;
    for (int i = 0; i < c.points; ++i) {
      const double column = 331.0 * (i % 4) / 3, row = 277.0 * (i / 4 + (i % 4 > 1)) / 4;
      const double u = column / 331 - 0.5, v = row / 277 - 0.5;
      points.push_back({column, row, t.x0 + t.a * column + t.b * row + c.curve * u * v,
                        t.y0 + t.d * column + t.e * row + c.curve * (u * u - v)});
    }
    placeByPoints(path, points);
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    ASSERT_EQ(image->notes().size(), 1U);
    EXPECT_NE(image->notes()[0].find("control points"), std::string::npos);
    EXPECT_EQ(image->notes()[0].find("north up") != std::string::npos, c.resampled);
    const Difference difference = compareWarped(readAll(*image), warpedByGdal(path, *image));
    EXPECT_LE(difference.most, 2);
    EXPECT_LE(difference.outline, 2);
    EXPECT_GT(difference.compared, 300 * 200);
  }
}

/// Where points are crowded the image shrinks; fine detail must be averaged there.
TEST(NorthUp, UnevenControlPointsDoNotAlias) {
  const Scratch scratch;
  constexpr int kSize = 500;
  const std::string path = scratch / "a.tif";
  writePicture(path, texture(kSize, kSize, 3), {"GTiff", {}, false});
  const auto bent = [](double part) { return kSize * (part + 7 * part * part) / 8; };
  std::vector<ControlPoint> points;
  for (int i = 0; i < 25; ++i) {
    const double x = i % 5 / 4.0, y = i / 5 / 4.0;
    points.push_back({bent(x), kSize * y, 1000 + 100 * x, 2000 - 100 * y});
  }
  placeByPoints(path, points);
  const auto image = openImage(path);
  ASSERT_TRUE(image);
  // GDAL's warp on a grid four times as fine, averaged.
  const Picture ours = readAll(*image);
  const Picture fine = warpedByGdal(path, *image, {}, 4);
  ASSERT_EQ(fine.width, ours.width * 4);
  double squares = 0;
  int count = 0;
  for (int y = 1; y + 1 < ours.height; ++y) {
    for (int x = ours.width * 5 / 6; x + 1 < ours.width; ++x) {
      double sum = 0;
      for (int k = 0; k < 16; ++k) sum += fine.at(x * 4 + k % 4, y * 4 + k / 4)[1];
      squares += std::pow(ours.at(x, y)[1] - sum / 16, 2);
      ++count;
    }
  }
  // Single points leave 6.
  EXPECT_LT(std::sqrt(squares / count), 2);
  EXPECT_GT(count, 8000);
}

/// All eight ways to lay an image along the axes of the ground.
TEST(NorthUp, TurnsAndMirrorsKeepEveryPixel) {
  const Scratch scratch;
  const Picture picture = smooth(301, 203, 3);
  for (int pose = 0; pose < 8; ++pose) {
    SCOPED_TRACE(pose);
    const bool transposed = pose & 1;
    const double right = pose & 2 ? -0.5 : 0.5, down = pose & 4 ? 0.25 : -0.25;
    const GeoTransform t = transposed ? GeoTransform{1000, 0, right, 2000, down, 0}
                                      : GeoTransform{1000, right, 0, 2000, 0, down};
    const std::string path = scratch / "a.tif", upright = scratch / "b.tif";
    writePicture(path, picture, {"GTiff", {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}});
    placeByTransform(path, t);
    // Where the pixel lies on the ground decides where it must come out.
    Picture expected{transposed ? 203 : 301, transposed ? 301 : 203, 3, {}};
    expected.pixels.resize(picture.pixels.size());
    const double left = std::min(1000.0, 1000 + right * expected.width);
    const double top = std::max(2000.0, 2000 + down * expected.height);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const double gx = t.x0 + t.a * (x + 0.5) + t.b * (y + 0.5);
        const double gy = t.y0 + t.d * (x + 0.5) + t.e * (y + 0.5);
        std::copy_n(picture.at(x, y), 3,
                    expected.at(int((gx - left) / 0.5), int((top - gy) / 0.25)));
      }
    }
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->notes().size(), 0U);
    EXPECT_EQ(image->geoTransform().x0, left);
    EXPECT_EQ(image->geoTransform().y0, top);
    EXPECT_EQ(image->geoTransform().a, 0.5);
    EXPECT_EQ(image->geoTransform().e, -0.25);
    EXPECT_EQ(largestDifference(readAll(*image), expected), 0);
    // The image's own pyramid, mirrored, is that of the mirrored image but for its last pixels.
    writePicture(upright, expected);
    ASSERT_TRUE(buildFor(path));
    const auto withPyramid = openImage(path), plain = openImage(upright);
    ASSERT_TRUE(withPyramid && plain);
    EXPECT_EQ(withPyramid->levelCount(), 2U);
    for (const double cell : {2.0, 2.9, 7.0}) {
      const Window w{3 * cell,
                     2 * cell,
                     cell,
                     cell,
                     int(expected.width / cell) + 1,
                     int(expected.height / cell) + 1};
      EXPECT_LE(largestDifference(readWindow(*withPyramid, w), readWindow(*plain, w)), 3) << cell;
    }
    ASSERT_TRUE(removeAll(path + ".ovr"));
  }
}

/// A line between two colours must come out where the transform puts it, at every level.
TEST(NorthUp, EdgesLieWhereTheyBelong) {
  const Scratch scratch;
  constexpr int kSize = 1600;
  constexpr double kEdge = 777;
  Picture picture{kSize, kSize, 1, std::vector<uint8_t>(size_t(kSize) * kSize, 60)};
  for (int y = 0; y < kSize; ++y) {
    for (int x = int(kEdge); x < kSize; ++x) *picture.at(x, y) = 190;
  }
  const std::string path = scratch / "a.tif";
  for (const double degrees : {-25.0, 5.0, 90.0 + 180.0, 180.0}) {
    writePicture(path, picture);
    const GeoTransform t = rotated(degrees, 0.5, 0.5);
    placeByTransform(path, t);
    ASSERT_TRUE(buildFor(path));
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->levelCount(), 4U);
    const GeoTransform& shown = image->geoTransform();
    for (const double cell : {1.0, 2.0, 3.3, 4.0, 8.0, 13.0}) {
      // The edge's middle on the ground, in shown pixels; a window around it.
      const double x = (t.x0 + t.a * kEdge + t.b * kSize / 2 - shown.x0) / shown.a;
      const double y = (t.y0 + t.d * kEdge + t.e * kSize / 2 - shown.y0) / shown.e;
      constexpr int kCells = 40;
      const Window w{x - cell * kCells / 2, y - cell * kCells / 2, cell, cell, kCells, kCells};
      const Picture cells = readWindow(*image, w, true);
      // Antisymmetric about the middle, so the average is half way for an edge without offset.
      double sum = 0;
      for (const uint8_t value : cells.pixels) sum += value;
      const double average = sum / double(cells.pixels.size());
      const double length = kCells / std::max(std::fabs(std::cos(degrees * kDegree)),
                                              std::fabs(std::sin(degrees * kDegree)));
      const double offset = (average - 125) / 130 * kCells * kCells / length;
      EXPECT_LT(std::fabs(offset), 0.1) << degrees << " degrees, cells of " << cell;
    }
    ASSERT_TRUE(removeAll(path + ".ovr"));
  }
}

TEST(NorthUp, RimsStayClean) {
  const Scratch scratch;
  constexpr int kSize = 900;
  const uint8_t content[3] = {200, 100, 50};
  Picture picture{kSize, kSize, 3, std::vector<uint8_t>(size_t(kSize) * kSize * 3, 0)};
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      const bool hole = std::hypot(x - 300, y - 350) < 120 || (x * 7 + y * 3) % 211 < 9;
      if (x - y / 3 > 700) {
        std::fill_n(picture.at(x, y), 3, uint8_t{255});
      } else if (!hole) {
        std::copy_n(content, 3, picture.at(x, y));
      }
    }
  }
  const std::string path = scratch / "a.tif";
  writePicture(path, picture);
  placeByTransform(path, rotated(17, 0.5, 0.5));
  for (const bool pyramid : {false, true}) {
    ASSERT_TRUE(!pyramid || buildFor(path).isOk());
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    for (const double cell : {1.0, 1.7, 2.0, 3.0, 5.5, 8.0, 16.0, 31.0, 64.0}) {
      for (const bool smooth : {false, true}) {
        const Picture cells =
            readWindow(*image,
                       {-3.3 * cell, -2 * cell, cell, cell, int(image->width() / cell) + 8,
                        int(image->height() / cell) + 8},
                       smooth);
        int shown = 0;
        for (size_t i = 0; i < cells.pixels.size(); i += 3) {
          const uint8_t* p = &cells.pixels[i];
          if (p[0] + p[1] + p[2] == 0) continue;
          ++shown;
          for (int c = 0; c < 3; ++c)
            ASSERT_LE(std::abs(p[c] - content[c]), 2) << "cells of " << cell;
        }
        EXPECT_GT(shown * cell * cell, 0.6 * kSize * kSize) << cell;
      }
    }
  }
}

TEST(NorthUp, ThreadsReadTheSameAsOne) {
  const Scratch scratch;
  const std::string path = scratch / "a.tif";
  writePicture(path, texture(1100, 900, 3), {"GTiff", {"TILED=YES", "COMPRESS=DEFLATE"}});
  placeByTransform(path, rotated(33, 0.5, 0.5));
  const auto image = openImage(path);
  ASSERT_TRUE(image);
  const Picture expected = readAll(*image);
  const std::vector<uint8_t>& bytes = expected.pixels;
  for (int round = 0; round < 3; ++round) {
    TileCache::shared().clear();
    std::vector<Picture> read(4);
    std::vector<std::thread> threads;
    for (Picture& each : read) threads.emplace_back([&] { each = readAll(*image); });
    for (std::thread& thread : threads) thread.join();
    for (const Picture& each : read) EXPECT_TRUE(each.pixels == bytes);
  }
}

}  // namespace
}  // namespace tarn::raster
