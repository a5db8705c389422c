#include "_image/view/viewgeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace tarn::image;  // NOLINT(google-build-using-namespace)

constexpr double kDegree = 3.141592653589793 / 180.0;

/// A view as the host describes it.
struct View {
  double centerX, centerY, height;
  ScreenSize screen;
  double degrees;

  double twist() const { return degrees * kDegree; }
  /// Ground point under a screen point, worked out with sine and cosine alone.
  QPointF groundAt(double x, double y) const {
    const double unit = height / screen.height;
    const double right = (x - screen.width / 2.0) * unit;
    const double up = (screen.height / 2.0 - y) * unit;
    const double c = std::cos(twist());
    const double s = std::sin(twist());
    return {centerX + c * right + s * up, centerY - s * right + c * up};
  }
  ViewSize size() const {
    return viewSizeFromCorners(groundAt(0, screen.height), groundAt(screen.width, 0));
  }
};

const View kViews[] = {
    {0, 0, 100, {1000, 500}, 0},
    {40500123.456, 3512345.678, 450, {1919, 1080}, 0},
    {40500123.456, 3512345.678, 450, {1920, 1080}, 30},
    {40500123.456, 3512345.678, 1.5, {1920, 1080}, -30},
    {40500123.456, 3512345.678, 90000, {800, 600}, 90},
    {-1200.5, 77.25, 12, {640, 480}, 180},
    {5, 6, 7, {300, 400}, 361.5},
};

TEST(ViewGeometry, GroundPointsLandWhereTheScreenShowsThem) {
  for (const View& view : kViews) {
    SCOPED_TRACE(view.degrees);
    const QTransform transform = groundToScreen(view.size(), view.screen, view.twist());
    // The middle of a screen with an odd side is its integer half, so such a view is off by half a
    // pixel, the same everywhere.
    const double shiftX = view.screen.width % 2 / -2.0;
    const double shiftY = view.screen.height % 2 / -2.0;
    for (const QPointF at : {QPointF(0, 0), QPointF(17.25, 400), QPointF(300, 11)}) {
      const QPointF mapped = transform.map(view.groundAt(at.x(), at.y()));
      EXPECT_NEAR(mapped.x(), at.x() + shiftX, 1e-4);
      EXPECT_NEAR(mapped.y(), at.y() + shiftY, 1e-4);
    }
  }
}

TEST(ViewGeometry, AnUntwistedViewIsItsCentreAndHalfItsSize) {
  const View view{40500123.456, 3512345.678, 450, {1920, 1080}, 0};
  const ViewSize size = view.size();
  EXPECT_NEAR(size.width, 800, 1e-6);
  EXPECT_NEAR(size.height, 450, 1e-6);
  const GroundRect rect = diagonalRect(groundToScreen(size, view.screen, 0), view.screen);
  EXPECT_NEAR(rect.minX, 40500123.456 - 400, 1e-6);
  EXPECT_NEAR(rect.maxX, 40500123.456 + 400, 1e-6);
  EXPECT_NEAR(rect.minY, 3512345.678 - 225, 1e-6);
  EXPECT_NEAR(rect.maxY, 3512345.678 + 225, 1e-6);
}

TEST(ViewGeometry, ATwistedViewHasTheBoxOfOneDiagonalAndOfAllCorners) {
  // 400 x 300 units: the diagonal from lower left to upper right has the length 500.
  for (const double degrees : {30.0, -30.0, 90.0, -36.86989764584402}) {
    SCOPED_TRACE(degrees);
    const View view{100, 200, 300, {800, 600}, degrees};
    const double angle = std::atan2(300, 400) - degrees * kDegree;
    const GroundRect thin =
        diagonalRect(groundToScreen(view.size(), view.screen, view.twist()), view.screen);
    EXPECT_NEAR(thin.maxX - thin.minX, 500 * std::fabs(std::cos(angle)), 1e-6);
    EXPECT_NEAR(thin.maxY - thin.minY, 500 * std::fabs(std::sin(angle)), 1e-6);

    const GroundRect whole = wholeViewRect({100, 200}, 300, view.screen, view.twist());
    double reached = 0;
    for (const QPointF corner :
         {QPointF(0, 0), QPointF(800, 0), QPointF(800, 600), QPointF(0, 600)}) {
      const QPointF ground = view.groundAt(corner.x(), corner.y());
      EXPECT_LE(ground.x(), whole.maxX + 1e-9);
      EXPECT_GE(ground.x(), whole.minX - 1e-9);
      EXPECT_LE(ground.y(), whole.maxY + 1e-9);
      EXPECT_GE(ground.y(), whole.minY - 1e-9);
      reached = std::max(reached, ground.x());
    }
    EXPECT_NEAR(reached, whole.maxX, 1e-9);
  }
}

TEST(ViewGeometry, EnlargesAboutTheCentre) {
  const GroundRect twice = enlarged({10, 20, 30, 60}, 2.0);
  EXPECT_DOUBLE_EQ(twice.minX, 0);
  EXPECT_DOUBLE_EQ(twice.maxX, 40);
  EXPECT_DOUBLE_EQ(twice.minY, 0);
  EXPECT_DOUBLE_EQ(twice.maxY, 80);
}

TEST(ViewGeometry, TruncatesTowardsZeroWithinTheRangeOfAnInt) {
  const struct {
    double value;
    int expected;
  } cases[] = {{1919.6, 1919},
               {-3.9, -3},
               {0.99, 0},
               {-0.99, 0},
               {3e12, 2147483647},
               {-1e300, std::numeric_limits<int>::min()},
               {std::numeric_limits<double>::infinity(), 2147483647},
               {std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& one : cases) EXPECT_EQ(truncateToInt(one.value), one.expected) << one.value;
}

TEST(ViewGeometry, MapsAPixelRectangleToAPolygon) {
  QTransform transform;
  transform.translate(100, 50);
  transform.scale(2, -2);
  const QPolygonF polygon = mapPixelRect(transform, QRect(1, 2, 10, 5));
  EXPECT_EQ(polygon, QPolygonF({{102, 46}, {122, 46}, {122, 36}, {102, 36}}));
}

}  // namespace
