// The component between dialog and drawing: runs, second rectifications, what is stored.
#include <limits>

#include "base/file.h"
#include "tests/rectify/fixture.h"

namespace tarn::rectify {
namespace {

using kel::PointList;
using test::recorded;
using ::testing::HasSubstr;

constexpr int kWidth = 200, kHeight = 200;
constexpr double kLeft = 1000, kTop = 2000, kPixel = 2;

void bent(double x, double y, double& X, double& Y) {
  const double u = (x - 1200) / 200, v = (y - 1800) / 200;
  X = 40500000 + 220 * u + 30 * v + 12 * u * u + 7 * u * v;
  Y = 3500000 - 20 * u + 190 * v + 9 * v * v;
}

void turned(double x, double y, double& X, double& Y) {
  X = 0.6 * (x - 40500000) - 0.8 * (y - 3500000) + 777;
  Y = 0.8 * (x - 40500000) + 0.6 * (y - 3500000) + 999;
}

double farthest(IRectifyDialog& image, const GroundMap& map) {
  double most = 0;
  for (const double column : {0.0, 77.0, 200.0}) {
    for (const double row : {0.0, 91.0, 200.0}) {
      double x = 0, y = 0, X = 0, Y = 0;
      EXPECT_TRUE(image.drawingOfPixel(column, row, x, y));
      map(kLeft + column * kPixel, kTop - row * kPixel, X, Y);
      most = std::max(most, std::hypot(x - X, y - Y));
    }
  }
  return most;
}

void both(double x, double y, double& X, double& Y) {
  double u = 0, v = 0;
  bent(x, y, u, v);
  turned(u, v, X, Y);
}

class Component : public RectifyTest {
 protected:
  void SetUp() override {
    RectifyTest::SetUp();
    path_ = writeRamp("map", kWidth, kHeight, kLeft, kTop, kPixel);
  }
  std::string path_;
};

TEST_F(Component, ASecondRectificationGoesOnTopOfTheFirst) {
  const auto image = open(path_);
  rectify(*image.get(), 1, pointsOver(*image.get(), 4, bent));
  EXPECT_LT(farthest(*image.get(), bent), 1e-6);
  // Other points, picked on the image as it is drawn now.
  image->prepare(0);
  rectify(*image.get(), 4, pointsOver(*image.get(), 2, turned));
  EXPECT_LT(farthest(*image.get(), both), 1e-6);
  // And on a moved image.
  image->prepare(0);
  image->imageQueryC()->move(5, 6);
  image->applyPlacement();
  EXPECT_LT(farthest(*image.get(),
                     [](double x, double y, double& X, double& Y) {
                       both(x, y, X, Y);
                       X += 5;
                       Y += 6;
                     }),
            1e-6);
  rectify(*image.get(), 3,
          pointsOver(*image.get(), 2, [](double x, double y, double& X, double& Y) {
            X = 2 * x;
            Y = 3 * y;
          }));
  EXPECT_LT(farthest(*image.get(),
                     [](double x, double y, double& X, double& Y) {
                       both(x, y, X, Y);
                       X = 2 * (X + 5);
                       Y = 3 * (Y + 6);
                     }),
            1e-6);
}

TEST_F(Component, PointsTakenUpAgainComputeTheRectificationAnew) {
  const auto image = open(path_);
  const Points points = pointsOver(*image.get(), 4, bent);
  rectify(*image.get(), 1, points);
  image->prepare(0);
  PointList sources, targets;
  ASSERT_TRUE(image->transformQuery(sources, targets));
  EXPECT_EQ(image->rectifyMethod(), 1);
  ASSERT_EQ(sources.size(), 16U);
  // Sources lie where the image shows them now, which is where they belong.
  for (size_t i = 0; i < sources.size(); ++i) {
    EXPECT_NEAR(sources[i][0], targets[i][0], 1e-6);
    EXPECT_NEAR(sources[i][1], targets[i][1], 1e-6);
    EXPECT_EQ(targets[i], points.targets[i]);
  }
  // One more point, picked on the image as drawn; the method is another. The fit is of all points
  // from the image's first place, as if there had been no first one.
  double px = 0, py = 0, X = 0, Y = 0;
  bent(1333, 1777, px, py);
  X = px + 3;
  Y = py - 2;
  sources.push_back({px, py, 0.0});
  targets.push_back({X, Y, 0.0});
  rectify(*image.get(), 3, {sources, targets});
  Points direct = points;
  direct.sources.push_back({1333, 1777, 0.0});
  direct.targets.push_back({X, Y, 0.0});
  const auto fresh = open(path_);
  rectify(*fresh.get(), 3, direct);
  EXPECT_LT(farthest(*fresh.get(),
                     [&](double x, double y, double& outX, double& outY) {
                       image->drawingOfPixel((x - kLeft) / kPixel, (kTop - y) / kPixel, outX, outY);
                     }),
            1e-6);
  // Pressing OK again with the points as they are in the table changes nothing.
  const auto before = image->storedState();
  rectify(*image.get(), 3, {sources, targets});
  const auto after = image->storedState();
  ASSERT_EQ(before.size(), after.size());
  for (size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(before[i], after[i], 1e-6);
}

TEST_F(Component, NothingStaysOfWhatWasNotAccepted) {
  const auto image = open(path_);
  const auto source = kel::Object<IImageDivision>::adopt(image->imageSource());
  const auto numbers = [&] {
    const double* g = source->geoTransform();
    return std::vector<double>(g, g + 6);
  };
  const auto before = numbers();
  // Residuals with the method whose minimum count was asked for; the preview shows at once.
  const Points points = pointsOver(*image.get(), 4, bent);
  EXPECT_EQ(image->minimumPointCount(1), 6);
  image->setControlPoints(points.sources, points.targets);
  ASSERT_EQ(image->getResiduals().size(), 16U);
  EXPECT_LT(image->getResiduals()[3][2], 1e-6);
  EXPECT_NE(numbers(), before);
  double X = 0, Y = 0, x = 0, y = 0;
  ASSERT_TRUE(image->transformPoint(1300, 1700, x, y));
  bent(1300, 1700, X, Y);
  EXPECT_NEAR(x, X, 1e-6);
  EXPECT_NEAR(y, Y, 1e-6);
  image->setRectifyMethod(-1);
  EXPECT_EQ(numbers(), before);
  EXPECT_EQ(source->width(), kWidth);
  PointList none;
  EXPECT_FALSE(image->transformQuery(none, none));
  const int counts[] = {10, 6, 2, 3, 2};
  for (int m = 0; m < 5; ++m) EXPECT_EQ(image->minimumPointCount(m), counts[m]);
  EXPECT_EQ(image->minimumPointCount(-1), 0);
  EXPECT_EQ(image->minimumPointCount(9), 0);
}

TEST_F(Component, StoredNumbersBringTheImageBack) {
  const auto image = open(path_);
  rectify(*image.get(), 1, pointsOver(*image.get(), 4, bent));
  image->imageQueryC()->rotate(0.3, 40500000, 3500000);
  image->applyPlacement();
  const auto state = image->storedState();
  const auto again = open(path_);
  ASSERT_TRUE(again->restoreState(state));
  EXPECT_EQ(again->storedState(), state);
  EXPECT_LT(farthest(*again.get(),
                     [&](double x, double y, double& X, double& Y) {
                       image->drawingOfPixel((x - kLeft) / kPixel, (kTop - y) / kPixel, X, Y);
                     }),
            1e-9);
  // What is no such list changes nothing: cut short, longer, for another size, with holes.
  for (size_t length = 1; length < state.size(); ++length)
    EXPECT_FALSE(again->restoreState({state.begin(), state.begin() + static_cast<long>(length)}));
  for (size_t i = 0; i < state.size(); ++i) {
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), 1e308, -1.0}) {
      if (bad == -1 && i > 12 && i % 9 != 0) continue;  // blunders of one point are alike
      auto broken = state;
      broken[i] = bad;
      if (!again->restoreState(broken)) continue;
      const auto source = kel::Object<IImageDivision>::adopt(again->imageSource());
      unsigned char cells[300];
      unsigned char* out = cells;
      source->readBlock(0, 0, 10, 10, source->width() / 10.0 + 0.1, source->height() / 10.0 + 0.1,
                        &out);
    }
  }
  ASSERT_TRUE(again->restoreState({}));
  EXPECT_LT(farthest(*again.get(),
                     [](double x, double y, double& X, double& Y) {
                       X = x;
                       Y = y;
                     }),
            1e-9);
}

struct Analyser : CallBackRectifyOperator {
  void* imageAnalyser() override { return source; }
  IImageDivision* source = nullptr;
};

TEST_F(Component, AnotherDialogTakesOverWhatTheSourceHas) {
  auto first = open(path_);
  rectify(*first.get(), 1, pointsOver(*first.get(), 4, bent));
  const auto source = kel::Object<IImageDivision>::adopt(first->imageSource());
  first.reset();  // the source keeps it alive
  Analyser callback;
  callback.source = source.get();
  const auto second = open(path_, &callback);
  EXPECT_EQ(second->rectifyMethod(), 1);
  EXPECT_LT(farthest(*second.get(), bent), 1e-6);
  int code = 0;
  source->coordinateSystem(code);
  EXPECT_EQ(code, -1);
  EXPECT_TRUE(source->hasPyramid(scratch_.folder().c_str()));
  source->close();
  EXPECT_EQ(source->width(), 0);
  EXPECT_TRUE(source->init(path_.c_str(), scratch_.folder().c_str(), false));
  EXPECT_GT(source->width(), 0);
  EXPECT_FALSE(source->init("elsewhere.tif", scratch_.folder().c_str(), false));
}

TEST_F(Component, SingularAndHostilePointsAreToldAndHarmNothing) {
  const auto image = open(path_);
  const auto list = [](const std::vector<std::pair<double, double>>& points) {
    PointList result;
    for (const auto& p : points) result.push_back({p.first, p.second, 0.0});
    return result;
  };
  const PointList line = list({{1000, 2000}, {1100, 1900}, {1200, 1800}});
  const PointList targets = list({{0, 0}, {1, 1}, {2, 5}});
  image->setRectifyMethod(3);
  image->setControlPoints(line, targets);
  EXPECT_EQ(image->rectifyStatus(), 1);
  EXPECT_EQ(image->quality().fault, kel::RectifyFault::kOnLine);
  EXPECT_TRUE(std::isnan(image->getResiduals()[0][2]));
  image->acceptTransform();
  EXPECT_LT(farthest(*image.get(),
                     [](double x, double y, double& X, double& Y) {
                       X = x;
                       Y = y;
                     }),
            1e-9);
  const double inf = std::numeric_limits<double>::infinity();
  for (const double far : {inf, -inf, 1e308, 1e155, 1e12}) {
    for (int method = 0; method < 5; ++method) {
      image->setRectifyMethod(method);
      Points points = pointsOver(*image.get(), 5, bent);
      points.targets[7][0] = far;
      points.sources[3][1] = far < 1e300 ? points.sources[3][1] : far;
      image->setControlPoints(points.sources, points.targets);
      EXPECT_TRUE(std::isfinite(far) || image->rectifyStatus() == 1) << far << ' ' << method;
      const auto source = kel::Object<IImageDivision>::adopt(image->imageSource());
      unsigned char cells[300];
      unsigned char* out = cells;
      source->readBlock(0, 0, 10, 10, source->width() / 10.0 + 0.1, source->height() / 10.0 + 0.1,
                        &out);
      image->setRectifyMethod(-1);
    }
  }
  image->setControlPoints({{1}, {}}, {{}, {2, 3}, {4}});
  EXPECT_EQ(image->rectifyStatus(), 1);
  // Targets far away are no fault by themselves.
  image->setRectifyMethod(4);
  Points away = pointsOver(*image.get(), 3, [](double x, double y, double& X, double& Y) {
    X = x + 1e12;
    Y = y - 1e12;
  });
  image->setControlPoints(away.sources, away.targets);
  EXPECT_EQ(image->rectifyStatus(), 0) << static_cast<int>(image->quality().fault);
}

TEST_F(Component, ImagesThatCannotBeOpenedOrAreGone) {
  kel::Object<IRectifyDialog> image("N", "test", 3);
  EXPECT_FALSE(image->openImage(scratch_ / "none.tif", nullptr));
  ASSERT_EQ(recorded().messages.size(), 1U);
  EXPECT_THAT(recorded().messages[0], HasSubstr("none.tif"));
  EXPECT_FALSE(image->hasImage());
  double x = 0, y = 0;
  EXPECT_FALSE(image->drawingOfPixel(1, 1, x, y));
  EXPECT_TRUE(image->storedState().empty());
  ASSERT_TRUE(image->openImage(path_, nullptr));
  const auto source = kel::Object<IImageDivision>::adopt(image->imageSource());
  ASSERT_TRUE(removeAll(path_));
  std::vector<unsigned char> cells(300, 7);
  EXPECT_FALSE(source->readRegion(0, 0, 10, 10, 1, 1, cells.data()));
  EXPECT_EQ(cells, std::vector<unsigned char>(300, 0));
  EXPECT_THAT(recorded().messages.back(), HasSubstr("is not there any more"));
  image->show();
  EXPECT_THAT(recorded().messages.back(), HasSubstr("cannot be shown here"));
}

}  // namespace
}  // namespace tarn::rectify
