// What the rectified source shows: every pixel where the transformation puts it.
#include <random>
#include <thread>

#include "tests/rectify/fixture.h"

namespace tarn::rectify {
namespace {

using kel::PointList;
using test::recorded;

constexpr int kWidth = 200, kHeight = 200;  // a step of colour is a pixel
constexpr double kLeft = 40500100, kTop = 3500300, kPixel = 0.5;

/// Around the middle of the image in its first place, in its size.
struct Local {
  double u, v;
};
Local localOf(double x, double y) {
  return {(x - (kLeft + 50)) / 50, (y - (kTop - 50)) / 50};
}

struct Case {
  const char* name;
  int method;
  int side;
  GroundMap map;
};

const Case kCases[] = {{"cubic", 0, 5,
                        [](double x, double y, double& X, double& Y) {
                          const auto [u, v] = localOf(x, y);
                          X = 40500900 + 60 * u - 12 * v + 4 * u * u + 3 * u * v + 2 * u * u * u -
                              2 * v * v * v;
                          Y = 3500700 + 9 * u + 55 * v - 3 * v * v + 2 * u * v + 1.5 * u * u * v;
                        }},
                       {"quadratic", 1, 4,
                        [](double x, double y, double& X, double& Y) {
                          const auto [u, v] = localOf(x, y);
                          X = 40500900 + 60 * u + 15 * v + 5 * u * u - 4 * u * v;
                          Y = 3500700 - 9 * u + 55 * v - 6 * v * v + 3 * u * v;
                        }},
                       {"linear", 2, 2,
                        [](double x, double y, double& X, double& Y) {
                          X = 1.3 * (x - kLeft) + 40500900;
                          Y = 0.8 * (y - kTop) + 3500700;
                        }},
                       {"affine", 3, 2,
                        [](double x, double y, double& X, double& Y) {
                          X = 1.2 * (x - kLeft) + 0.3 * (y - kTop) + 40500900;
                          Y = -0.2 * (x - kLeft) + 0.9 * (y - kTop) + 3500700;
                        }},
                       {"helmert", 4, 2, [](double x, double y, double& X, double& Y) {
                          X = 0.8 * (x - kLeft) - 0.6 * (y - kTop) + 40500900;
                          Y = 0.6 * (x - kLeft) + 0.8 * (y - kTop) + 3500700;
                        }}};

/// The inverse of a map by plain bisection of its neighbourhood: shares nothing with what is
/// tested. Ground in the first place to pixels is known.
bool pixelByMap(const GroundMap& map, double X, double Y, double& column, double& row) {
  double x = kLeft + 50, y = kTop - 50;
  for (double step = 64; step > 1e-4; step /= 2) {
    // The best of a neighbourhood, as long as it moves.
    for (int moves = 0; moves < 6; ++moves) {
      double best = HUGE_VAL, bestX = x, bestY = y;
      for (int j = -1; j <= 1; ++j) {
        for (int i = -1; i <= 1; ++i) {
          double gx = 0, gy = 0;
          map(x + i * step, y + j * step, gx, gy);
          const double away = std::hypot(gx - X, gy - Y);
          if (away < best) {
            best = away;
            bestX = x + i * step;
            bestY = y + j * step;
          }
        }
      }
      if (bestX == x && bestY == y) break;
      x = bestX;
      y = bestY;
    }
  }
  double gx = 0, gy = 0;
  map(x, y, gx, gy);
  column = (x - kLeft) / kPixel;
  row = (kTop - y) / kPixel;
  return std::hypot(gx - X, gy - Y) < 1e-2;
}

class Drawn : public RectifyTest {
 protected:
  void SetUp() override {
    RectifyTest::SetUp();
    path_ = writeRamp("扫描图", kWidth, kHeight, kLeft, kTop, kPixel);
  }
  void expectPlaced(IRectifyDialog& image, const PixelOfGround& pixelOf, const char* name) {
    for (const int columns : {70, 130}) {
      const Shown shown = show(image, columns);
      const Placed placed = comparePlaces(shown, kWidth, kHeight, pixelOf);
      EXPECT_GT(placed.compared, columns * columns / 4) << name;
      EXPECT_EQ(placed.holes, 0) << name;
      EXPECT_EQ(placed.stray, 0) << name;
      // A colour is a pixel, and is rounded twice; CrossesLieWithinATenthOfAPixel looks closer.
      EXPECT_LT(placed.error, 1.3) << name << ' ' << columns;
    }
  }
  std::string path_;
};

TEST_F(Drawn, EveryMethodPutsPixelsInTheirPlaces) {
  for (const Case& one : kCases) {
    const auto image = open(path_);
    rectify(*image.get(), one.method, pointsOver(*image.get(), one.side, one.map));
    expectPlaced(
        *image.get(),
        [&](double x, double y, double& c, double& r) { return pixelByMap(one.map, x, y, c, r); },
        one.name);
    // The conversion that everything goes through, to a thousandth of a pixel.
    std::mt19937 random(3);
    std::uniform_real_distribution<double> at(0, kWidth);
    for (int i = 0; i < 50; ++i) {
      const double column = at(random), row = at(random);
      double X = 0, Y = 0, x = 0, y = 0, backColumn = 0, backRow = 0;
      one.map(kLeft + column * kPixel, kTop - row * kPixel, X, Y);
      ASSERT_TRUE(image->drawingOfPixel(column, row, x, y));
      EXPECT_NEAR(x, X, 1e-6) << one.name;
      EXPECT_NEAR(y, Y, 1e-6) << one.name;
      ASSERT_TRUE(image->pixelOfDrawing(X, Y, backColumn, backRow)) << one.name;
      EXPECT_NEAR(backColumn, column, 1e-5) << one.name;
      EXPECT_NEAR(backRow, row, 1e-5) << one.name;
    }
  }
}

// Colours of a thin cross say to a fraction of a pixel where it is: its centre of brightness.
TEST_F(Drawn, CrossesLieWithinATenthOfAPixel) {
  constexpr int kSize = 900, kStep = 90;
  raster::Picture picture;
  picture.width = picture.height = kSize;
  picture.channels = 1;
  picture.pixels.assign(static_cast<size_t>(kSize) * kSize, 10);
  for (int j = kStep / 2; j < kSize; j += kStep)
    for (int i = kStep / 2; i < kSize; i += kStep)
      for (int y = -3; y <= 3; ++y)
        for (int x = -3; x <= 3; ++x) *picture.at(i + x, j + y) = 250;
  raster::FileForm form;
  form.georeferenced = false;
  const std::string path = scratch_ / "crosses.tif";
  writePicture(path, picture, form);
  raster::writeText(
      scratch_ / "crosses.tfw",
      "0.1111111111\n0\n0\n-0.1111111111\n40500100.05555555555\n3500299.94444444445\n");
  for (const Case& one : kCases) {
    const auto image = open(path);
    rectify(*image.get(), one.method, pointsOver(*image.get(), one.side, one.map));
    const auto source = kel::Object<IImageDivision>::adopt(image->imageSource());
    const double* g = source->geoTransform();
    double most = 0;
    for (int j = kStep / 2; j < kSize; j += kStep) {
      for (int i = kStep / 2; i < kSize; i += kStep) {
        double X = 0, Y = 0;
        one.map(kLeft + (i + 0.5) * 0.1111111111, kTop - (j + 0.5) * 0.1111111111, X, Y);
        const double column = (X - g[4]) / g[0], row = (Y - g[5]) / g[3];
        constexpr int kWindow = 25;
        std::vector<unsigned char> cells(kWindow * kWindow * 3);
        const int x0 = static_cast<int>(column) - kWindow / 2,
                  y0 = static_cast<int>(row) - kWindow / 2;
        unsigned char* out = cells.data();
        ASSERT_TRUE(source->readBlock(x0, y0, kWindow, kWindow, 1, 1, &out));
        double sum = 0, sumX = 0, sumY = 0;
        for (int y = 0; y < kWindow; ++y) {
          for (int x = 0; x < kWindow; ++x) {
            const double light = std::max(0, cells[(y * kWindow + x) * 3] - 10);
            sum += light;
            sumX += light * (x0 + x + 0.5);
            sumY += light * (y0 + y + 0.5);
          }
        }
        ASSERT_GT(sum, 0);
        most = std::max(most, std::hypot(sumX / sum - column, sumY / sum - row));
      }
    }
    EXPECT_LT(most, 0.1) << one.name;
  }
}

TEST_F(Drawn, PlacementsCombineInAnyOrder) {
  // Each operation as a matrix written out here, by hand.
  struct Operation {
    const char* name;
    std::function<void(kel::RectifyPlacement&)> apply;
    double m[6];  // x' = m0 + m1 x + m2 y; y' = m3 + m4 x + m5 y, around (40500100, 3500300)
  };
  const double c = std::cos(0.5), s = std::sin(0.5);
  const Operation operations[] = {
      {"move", [](kel::RectifyPlacement& p) { p.move(30, -7); }, {30, 1, 0, -7, 0, 1}},
      {"scale",
       [](kel::RectifyPlacement& p) { p.scale(2, 0.5, kLeft, kTop); },
       {0, 2, 0, 0, 0, 0.5}},
      {"rotate", [](kel::RectifyPlacement& p) { p.rotate(0.5, kLeft, kTop); }, {0, c, -s, 0, s, c}},
      {"quarter",
       [](kel::RectifyPlacement& p) { p.rotate(M_PI / 2, kLeft, kTop); },
       {0, 0, -1, 0, 1, 0}},
      {"mirror",
       [](kel::RectifyPlacement& p) { p.mirror(kLeft, kTop, kLeft, kTop + 9); },
       {0, -1, 0, 0, 0, 1}}};
  for (const Operation& first : operations) {
    for (const Operation& second : operations) {
      const auto image = open(path_);
      for (const Operation* one : {&first, &second}) {
        one->apply(*image->imageQueryC());
        image->applyPlacement();
      }
      const double* a = first.m;
      const double* b = second.m;
      const auto forward = [&](double column, double row, double& x, double& y) {
        const double u = column * kPixel, v = -row * kPixel;
        const double p = a[0] + a[1] * u + a[2] * v, q = a[3] + a[4] * u + a[5] * v;
        x = kLeft + b[0] + b[1] * p + b[2] * q;
        y = kTop + b[3] + b[4] * p + b[5] * q;
      };
      const std::string name = std::string(first.name) + ", " + second.name;
      for (const auto& corner : {std::pair<double, double>{0, 0}, {kWidth, 0}, {0, kHeight}}) {
        double x = 0, y = 0, X = 0, Y = 0;
        ASSERT_TRUE(image->drawingOfPixel(corner.first, corner.second, x, y));
        forward(corner.first, corner.second, X, Y);
        EXPECT_NEAR(x, X, 1e-7) << name;
        EXPECT_NEAR(y, Y, 1e-7) << name;
      }
      // The inverse of two matrices, for the picture.
      const auto back = [&](double x, double y, double& column, double& row) {
        double ox = 0, oy = 0, rx = 0, ry = 0, dx = 0, dy = 0;
        forward(0, 0, ox, oy);
        forward(1, 0, rx, ry);
        forward(0, 1, dx, dy);
        const double m11 = rx - ox, m12 = dx - ox, m21 = ry - oy, m22 = dy - oy;
        const double det = m11 * m22 - m12 * m21;
        column = (m22 * (x - ox) - m12 * (y - oy)) / det;
        row = (m11 * (y - oy) - m21 * (x - ox)) / det;
        return true;
      };
      expectPlaced(*image.get(), back, name.c_str());
    }
  }
}

TEST_F(Drawn, AMovedImageKeepsItsOwnPixels) {
  const auto image = open(path_);
  image->imageQueryC()->move(12.5, 8);
  image->imageQueryC()->scale(3, 2, kLeft, kTop);
  image->applyPlacement();
  const auto source = kel::Object<IImageDivision>::adopt(image->imageSource());
  ASSERT_EQ(source->width(), kWidth);
  ASSERT_EQ(source->height(), kHeight);
  std::vector<unsigned char> cells(static_cast<size_t>(kWidth) * kHeight * 3);
  unsigned char* out = cells.data();
  ASSERT_TRUE(source->readBlock(0, 0, kWidth, kHeight, 1, 1, &out));
  EXPECT_EQ(cells, ramp(kWidth, kHeight).pixels);
  EXPECT_NEAR(source->geoTransform()[4], kLeft + 37.5, 1e-7);
  EXPECT_NEAR(source->geoTransform()[5], kTop + 16, 1e-7);
  // A record that would flatten the image is refused.
  image->imageQueryC()->a = 0;
  image->imageQueryC()->b = 0;
  image->applyPlacement();
  EXPECT_EQ(image->imageQueryC()->a, 3);
  ASSERT_EQ(recorded().messages.size(), 1U);
  EXPECT_THAT(recorded().messages[0], ::testing::HasSubstr("no area"));
}

TEST_F(Drawn, BlocksReadByThreadsAreTheViewReadAtOnce) {
  const auto image = open(path_);
  const Case& cubic = kCases[0];
  rectify(*image.get(), cubic.method, pointsOver(*image.get(), cubic.side, cubic.map));
  const auto source = kel::Object<IImageDivision>::adopt(image->imageSource());
  const int width = source->width(), height = source->height(), part = height / 4;
  std::vector<unsigned char> whole(static_cast<size_t>(width) * height * 3), pieces(whole);
  unsigned char* out = whole.data();
  ASSERT_TRUE(source->readBlock(0, 0, width, height, 1, 1, &out));
  // Through another component, so that nothing is in the cache.
  const auto other = open(path_);
  ASSERT_TRUE(other->restoreState(image->storedState()));
  const auto otherSource = kel::Object<IImageDivision>::adopt(other->imageSource());
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      const int rows = i == 3 ? height - 3 * part : part;
      unsigned char* to = &pieces[static_cast<size_t>(i) * part * width * 3];
      otherSource->readBlock(0, i * part, width, rows, 1, 1, &to);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(pieces, whole);
}

}  // namespace
}  // namespace tarn::rectify
