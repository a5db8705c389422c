#include "host/graphics/paperwindow.h"

#include <gtest/gtest.h>

#include <cmath>

#include "dbents.h"

namespace tarn::host {
namespace {

constexpr double kPi = 3.141592653589793;

ViewState sheetView(double turn) {
  ViewState paper;
  paper.centerX = 210;
  paper.centerY = 148.5;
  paper.height = 300;
  paper.twist = turn;
  paper.pixelWidth = 800;
  paper.pixelHeight = 601;
  return paper;
}

const PaperWindow kWindow{{100.3, 80.7}, 151.5, 90.25, {40500123.456, 3512345.678}, 250, 0.4};

TEST(PaperWindow, showsItsGroundAtItsPlaceUpToTheScale) {
  for (const double turn : {0.0, kPi / 2, kPi, 3 * kPi / 2}) {
    const ViewState paper = sheetView(turn);
    const ViewState model = throughWindow(kWindow, paper);
    const QRectF onDevice = deviceRectOf(kWindow, paper);
    const PixelPoint center = pixelFromGround(model, kWindow.viewCenter);
    EXPECT_NEAR(center.x, onDevice.center().x(), 1e-6);
    EXPECT_NEAR(center.y, onDevice.center().y(), 1e-6);
    // A step along the window's upper edge is that many units along the twisted model.
    const double ground = 10;
    const GroundPoint along{kWindow.viewCenter.x + ground * std::cos(kWindow.twist),
                            kWindow.viewCenter.y - ground * std::sin(kWindow.twist)};
    const double step = ground / kWindow.groundPerPaper();
    const PixelPoint wanted =
        pixelFromGround(paper, {kWindow.paperCenter.x + step, kWindow.paperCenter.y});
    const PixelPoint got = pixelFromGround(model, along);
    EXPECT_NEAR(got.x, wanted.x, 1e-6) << turn;
    EXPECT_NEAR(got.y, wanted.y, 1e-6) << turn;
  }
}

TEST(PaperWindow, aCroppedViewKeepsEveryPixel) {
  const ViewState paper = sheetView(0);
  const ViewState model = throughWindow(kWindow, paper);
  const QRect pixels = touchedPixels(deviceRectOf(kWindow, paper), paper);
  const ViewState part = croppedView(model, pixels);
  EXPECT_EQ(part.pixelWidth, pixels.width());
  for (const PixelPoint p : {PixelPoint{0, 0}, PixelPoint{17.25, 90.5}, PixelPoint{300, 2}}) {
    const GroundPoint a = groundFromPixel(part, p);
    const GroundPoint b = groundFromPixel(model, {p.x + pixels.left(), p.y + pixels.top()});
    EXPECT_NEAR(a.x, b.x, 1e-6);
    EXPECT_NEAR(a.y, b.y, 1e-6);
  }
}

TEST(PaperWindow, touchesOnlyPixelsOfTheDevice) {
  ViewState device;
  device.pixelWidth = 100;
  device.pixelHeight = 50;
  const struct {
    QRectF rect;
    QRect pixels;
  } cases[] = {
      {{10.2, 5.7, 20.5, 10.1}, {10, 5, 21, 11}}, {{10, 5, 20, 10}, {10, 5, 20, 10}},
      {{-50, -50, 1e9, 1e9}, {0, 0, 100, 50}},    {{200, 5, 20, 10}, {100, 5, 0, 10}},
      {{-30, 5, 20, 10}, {0, 5, 0, 10}},
  };
  for (const auto& one : cases) EXPECT_EQ(touchedPixels(one.rect, device), one.pixels);
}

TEST(PaperWindow, comesFromAViewportWhoseCentreIsTurnedAboutItsTarget) {
  AcDbViewport viewport;
  viewport.setViewTarget(AcGePoint3d(1000, 2000, 0));
  viewport.setViewCenter(AcGePoint2d(10, 0));
  viewport.setTwistAngle(kPi / 2);
  viewport.setViewHeight(50);
  const PaperWindow window = paperWindowOf(viewport);
  EXPECT_NEAR(window.viewCenter.x, 1000, 1e-9);
  EXPECT_NEAR(window.viewCenter.y, 1990, 1e-9);
  showInViewport(viewport, {40500123.456, 3512345.678}, 75, 0.3);
  EXPECT_EQ(paperWindowOf(viewport).viewCenter.x, 40500123.456);
  EXPECT_EQ(paperWindowOf(viewport).viewCenter.y, 3512345.678);
}

}  // namespace
}  // namespace tarn::host
