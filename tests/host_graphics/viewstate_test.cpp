#include "host/graphics/viewstate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarn::host {
namespace {

constexpr double kDegree = 3.141592653589793 / 180;

ViewState farView(double twistDegrees) {
  ViewState view;
  view.centerX = 40500000;
  view.centerY = 3500000;
  view.height = 540;
  view.twist = twistDegrees * kDegree;
  view.pixelWidth = 1920;
  view.pixelHeight = 1080;
  return view;
}

TEST(ViewState, pixelsAndGroundAreInverseFarFromTheOrigin) {
  for (const double degrees : {0.0, 30.0, -30.0, 90.0, 179.0}) {
    const ViewState view = farView(degrees);
    for (const PixelPoint p : {PixelPoint{0, 0}, {1920, 1080}, {960.5, 17.25}, {-300, 5000}}) {
      const PixelPoint back = pixelFromGround(view, groundFromPixel(view, p));
      EXPECT_NEAR(back.x, p.x, 1e-6) << degrees;
      EXPECT_NEAR(back.y, p.y, 1e-6) << degrees;
    }
  }
}

TEST(ViewState, pixelsAreEdgesAndTheTwistTurnsCounterClockwise) {
  const GroundPoint lowerLeft = groundFromPixel(farView(0), {0, 1080});
  EXPECT_DOUBLE_EQ(lowerLeft.x, 40500000 - 480);
  EXPECT_DOUBLE_EQ(lowerLeft.y, 3500000 - 270);
  // What lies to the east appears at the top after a quarter turn to the left.
  const PixelPoint east = pixelFromGround(farView(90), {40500000 + 100, 3500000});
  EXPECT_NEAR(east.x, 960, 1e-6);
  EXPECT_NEAR(east.y, 540 - 200, 1e-6);
}

TEST(ViewState, zoomKeepsTheGroundUnderTheCursor) {
  const ViewState view = farView(30);
  const PixelPoint cursor{123, 987};
  const GroundPoint before = groundFromPixel(view, cursor);
  const ViewState zoomed = zoomedAt(view, cursor, 4);
  EXPECT_DOUBLE_EQ(zoomed.height, 135);
  const GroundPoint after = groundFromPixel(zoomed, cursor);
  EXPECT_NEAR(after.x, before.x, 1e-7);
  EXPECT_NEAR(after.y, before.y, 1e-7);
  for (const double bad : {0.0, -2.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(zoomedAt(view, cursor, bad).height, view.height);
  }
  EXPECT_GE(zoomedAt(view, cursor, 1e30).height, 1e-6);
}

TEST(ViewState, panFollowsTheMouseInATwistedView) {
  const ViewState view = farView(-30);
  const GroundPoint grabbed = groundFromPixel(view, {400, 300});
  const PixelPoint moved = pixelFromGround(pannedBy(view, 57, -31), grabbed);
  EXPECT_NEAR(moved.x, 457, 1e-6);
  EXPECT_NEAR(moved.y, 269, 1e-6);
}

TEST(ViewState, fitShowsTheWholeBoxAtEveryTwist) {
  GroundBox box;
  for (const GroundPoint p : {GroundPoint{0, 0}, {4000, 500}}) box.add(p.x, p.y);
  for (const double degrees : {0.0, 30.0, 90.0}) {
    const ViewState view = fittedTo(farView(degrees), box, 0.01);
    double slack = 1e9;
    for (const GroundPoint p : {GroundPoint{0, 0}, {4000, 0}, {0, 500}, {4000, 500}}) {
      const PixelPoint at = pixelFromGround(view, p);
      slack = std::min({slack, at.x, at.y, 1920 - at.x, 1080 - at.y});
    }
    EXPECT_GT(slack, 0) << degrees;
    EXPECT_LT(slack, 25) << degrees;
  }
  EXPECT_EQ(fittedTo(farView(0), GroundBox(), 0.01).centerX, 40500000);
}

}  // namespace
}  // namespace tarn::host
