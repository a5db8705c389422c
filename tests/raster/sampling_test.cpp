#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "components/raster/taps.h"
#include "tests/raster/testimages.h"

namespace tarn::raster {
namespace {

bool isKey(const uint8_t* p) {
  return (p[0] == 0 && p[1] == 0 && p[2] == 0) || (p[0] == 255 && p[1] == 255 && p[2] == 255);
}

/// The cell as the definition has it, in double precision, straight from the full-size pixels.
std::array<double, 3> exactCell(const Picture& p, double x, double y, double cellX, double cellY,
                                double& cover) {
  double sum[3] = {0, 0, 0}, weight = 0, content = 0;
  for (int row = std::max(0, int(std::floor(y))); row < std::min<double>(p.height, y + cellY);
       ++row) {
    for (int col = std::max(0, int(std::floor(x))); col < std::min<double>(p.width, x + cellX);
         ++col) {
      const double wx = std::min<double>(x + cellX, col + 1) - std::max<double>(x, col);
      const double wy = std::min<double>(y + cellY, row + 1) - std::max<double>(y, row);
      if (wx <= 0 || wy <= 0) continue;
      weight += wx * wy;
      if (isKey(p.at(col, row))) continue;
      content += wx * wy;
      for (int c = 0; c < 3; ++c) sum[c] += wx * wy * p.at(col, row)[c];
    }
  }
  cover = weight > 0 ? content / weight : 0;
  if (content <= 0) return {0, 0, 0};
  return {sum[0] / content, sum[1] / content, sum[2] / content};
}

void expectAverage(const Picture& picture, const Picture& cells, const Window& w,
                   double tolerance) {
  double worst = 0;
  for (int r = 0; r < w.rows; ++r) {
    for (int c = 0; c < w.columns; ++c) {
      const double x = w.x + c * w.cellX, y = w.y + r * w.cellY;
      const bool inside = x + w.cellX / 2 >= 0 && x + w.cellX / 2 < picture.width &&
                          y + w.cellY / 2 >= 0 && y + w.cellY / 2 < picture.height;
      const uint8_t* cell = cells.at(c, r);
      if (!inside) {
        ASSERT_EQ(cell[0] + cell[1] + cell[2], 0) << c << ' ' << r;
        continue;
      }
      double cover = 0;
      const auto exact = exactCell(picture, x, y, w.cellX, w.cellY, cover);
      if (std::fabs(cover - 0.5) < 0.01) continue;
      if (cover < 0.5) {
        ASSERT_EQ(cell[0] + cell[1] + cell[2], 0)
            << "most of cell " << c << ' ' << r << " is nothing";
        continue;
      }
      ASSERT_FALSE(isKey(cell)) << "content became nothing in cell " << c << ' ' << r;
      for (int k = 0; k < 3; ++k) worst = std::max(worst, std::fabs(exact[k] - cell[k]));
    }
  }
  EXPECT_LE(worst, tolerance);
}

class Sampling : public ::testing::Test {
 protected:
  std::shared_ptr<RasterImage> open(const Picture& picture, const char* name = "a.tif") {
    writePicture(scratch_ / name, picture,
                 {"GTiff", {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}});
    return openImage(scratch_ / name);
  }
  Scratch scratch_;
};

TEST_F(Sampling, AveragesEqualTheExactOnes) {
  const Picture picture = texture(403, 307, 3);
  const auto image = open(picture);
  ASSERT_TRUE(image);
  for (const double cell : {1.3, 2.0, 2.71, 4.0, 7.9, 40.25, 500.0}) {
    for (const double start : {0.0, 0.37, -3.4 * cell}) {
      const Window w{start, start * 0.7, cell, cell, int(420 / cell) + 8, int(320 / cell) + 8};
      SCOPED_TRACE("cell " + std::to_string(cell) + " from " + std::to_string(start));
      expectAverage(picture, readWindow(*image, w), w, 1.6);
    }
  }
  const Window uneven{3.3, 1.1, 1.7, 3.9, 200, 70};
  expectAverage(picture, readWindow(*image, uneven), uneven, 1.6);
}

TEST_F(Sampling, RimsStayClean) {
  // Content that is dark beside pure black and light beside pure white, in a ragged line, and
  // single pixels of nothing.
  for (const int channels : {3, 1}) {
    Picture stored = smooth(300, 260, channels);
    for (int y = 0; y < stored.height; ++y) {
      for (int x = 0; x < stored.width; ++x) {
        if (x + y / 3 < 90 || x % 31 + y % 17 == 20)
          std::fill_n(stored.at(x, y), channels, uint8_t{0});
        if (x - y / 2 > 180 || x % 29 * y % 41 == 5)
          std::fill_n(stored.at(x, y), channels, uint8_t{255});
      }
    }
    const auto image = open(stored);
    ASSERT_TRUE(image);
    Picture picture{300, 260, 3, {}};
    for (size_t i = 0; i < size_t{300} * 260 * 3; ++i)
      picture.pixels.push_back(stored.pixels[channels == 3 ? i : i / 3]);
    for (const double cell : {1.4, 2.0, 2.9, 3.3, 9.0}) {
      const Window w{0.2, 0.1, cell, cell, int(290 / cell), int(250 / cell)};
      SCOPED_TRACE(cell);
      expectAverage(picture, readWindow(*image, w), w, 1.6);
    }
  }
}

TEST_F(Sampling, AveragesOfContentNeverAreBlackOrWhite) {
  Picture picture{64, 64, 3, std::vector<uint8_t>(64 * 64 * 3, 0)};
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const bool dark = x < 32;
      std::fill_n(picture.at(x, y), 3, uint8_t(dark ? 0 : 255));
      picture.at(x, y)[(x + y) % 3] = dark ? 1 : 254;
    }
  }
  const auto image = open(picture);
  ASSERT_TRUE(image);
  for (const double cell : {2.0, 2.5, 8.0}) {
    const Picture cells = readWindow(*image, {0, 0, cell, cell, int(64 / cell), int(64 / cell)});
    for (int i = 0; i < cells.width * cells.height; ++i)
      ASSERT_FALSE(isKey(&cells.pixels[3 * i])) << i;
  }
}

TEST_F(Sampling, EnlargingTakesTheNearestPixelOrBlends) {
  const Picture picture = texture(40, 30, 3);
  const auto image = open(picture);
  ASSERT_TRUE(image);
  const Window w{-1, -1, 0.3, 0.3, 140, 110};
  const Picture nearest = readWindow(*image, w), blended = readWindow(*image, w, true);
  for (int r = 0; r < w.rows; ++r) {
    for (int c = 0; c < w.columns; ++c) {
      const double x = w.x + (c + 0.5) * w.cellX, y = w.y + (r + 0.5) * w.cellY;
      const bool inside = x >= 0 && y >= 0 && x < picture.width && y < picture.height;
      for (int k = 0; k < 3; ++k) {
        ASSERT_EQ(nearest.at(c, r)[k], inside ? picture.at(int(x), int(y))[k] : 0) << c << ' ' << r;
        if (!inside) continue;
        const double u = std::min(std::max(x - 0.5, 0.0), 39.0),
                     v = std::min(std::max(y - 0.5, 0.0), 29.0);
        const int i = std::min(int(u), 38), j = std::min(int(v), 28);
        const double exact =
            (1 - (v - j)) *
                ((1 - (u - i)) * picture.at(i, j)[k] + (u - i) * picture.at(i + 1, j)[k]) +
            (v - j) *
                ((1 - (u - i)) * picture.at(i, j + 1)[k] + (u - i) * picture.at(i + 1, j + 1)[k]);
        ASSERT_NEAR(blended.at(c, r)[k], exact, 1.6) << c << ' ' << r;
      }
    }
  }
}

TEST_F(Sampling, FeaturesStayInPlaceAtEveryLevel) {
  // Lines one pixel wide at known places; through the pyramid their centre must stay within half a
  // cell. Odd sizes, so that no level is an exact half.
  Picture picture{2501, 1999, 3, std::vector<uint8_t>(2501 * 1999 * 3, 100)};
  for (const int at : {0, 613, 1250, 2497}) {
    for (int y = 0; y < picture.height; ++y) std::fill_n(picture.at(at, y), 9, uint8_t{250});
  }
  writePicture(scratch_ / "lines.tif", picture);
  ASSERT_TRUE(buildFor(scratch_ / "lines.tif"));
  const auto image = openImage(scratch_ / "lines.tif");
  ASSERT_TRUE(image);
  for (const double cell : {1.5, 3.1, 6.4, 13.0, 30.7}) {
    const int columns = int(2501 / cell);
    const Picture cells = readWindow(*image, {0, 500, cell, cell, columns, 4});
    for (const int at : {613, 1250, 2497}) {
      double weight = 0, moment = 0;
      for (int c = 0; c < columns; ++c) {
        if (std::fabs((c + 0.5) * cell - at - 1.5) > 3 * cell + 6) continue;
        const double light = cells.at(c, 2)[0] - 100.0;
        weight += light;
        moment += light * (c + 0.5) * cell;
      }
      if (weight < 4) continue;
      EXPECT_NEAR(moment / weight, at + 1.5, cell / 2) << "cell " << cell;
    }
  }
}

TEST_F(Sampling, HostileWindowsAreRefused) {
  const auto image = open(texture(50, 50, 3));
  ASSERT_TRUE(image);
  const double nan = std::numeric_limits<double>::quiet_NaN(),
               inf = std::numeric_limits<double>::infinity();
  std::vector<uint8_t> out(300, 9);
  ReadCounts counts;
  for (const Window& w :
       {Window{nan, 0, 1, 1, 10, 10}, Window{0, inf, 1, 1, 10, 10}, Window{0, 0, 0, 1, 10, 10},
        Window{0, 0, 1, -2, 10, 10}, Window{0, 0, nan, 1, 10, 10}, Window{0, 0, 1, 1, 0, 10},
        Window{0, 0, 1, 1, 10, -1}, Window{1e300, 0, 1, 1, 10, 10},
        Window{0, 0, 1e-300, 1, 10, 10}}) {
    EXPECT_FALSE(image->read(w, false, out.data(), counts));
  }
  // Far away and far too coarse are fine and black.
  for (const Window& w : {Window{1e11, -1e11, 1, 1, 10, 10}, Window{-5e9, -5e9, 1e9, 1e9, 4, 4}}) {
    const Picture cells = readWindow(*image, w);
    EXPECT_EQ(*std::max_element(cells.pixels.begin(), cells.pixels.end()), 0);
  }
}

TEST(Taps, WeightsAreWholeAndInside) {
  for (const double cell : {0.01, 0.5, 1.0, 1.0000001, 2.5, 1e6}) {
    for (const Filter filter : {Filter::kNearest, Filter::kBox, Filter::kBilinear}) {
      const AxisTaps taps = makeTaps({-3.3, cell, 500, 99.4, 100}, filter);
      for (int i = 0; i < taps.cells(); ++i) {
        float sum = 0;
        for (int k = 0; k < taps.width; ++k) {
          sum += taps.weightsOf(i)[k];
          ASSERT_TRUE(taps.weightsOf(i)[k] == 0 || taps.start[i] + k < 100);
        }
        ASSERT_NEAR(sum, 1, 1e-5);
        ASSERT_GE(taps.start[i], 0);
      }
    }
  }
}

}  // namespace
}  // namespace tarn::raster
