// The marks of the pairs: their size on the screen, and how long the host keeps them.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include "_image/rectify/pairmarkers.h"
#include "_image/rectify/pairsketch.h"
#include "host/editor/documents.h"
#include "tests/support/modulehost.h"

namespace tarn::image {
namespace {

/// Largest distance from the source of a line of the colour, in pixels of the view.
double reach(const std::vector<SketchLine>& lines, int color, SketchPoint from, double unit) {
  double most = 0;
  for (const SketchLine& line : lines) {
    if (line.color != color) continue;
    for (const SketchPoint& p : {line.from, line.to}) {
      most = std::max(most, std::hypot(p.x - from.x, p.y - from.y) / unit);
    }
  }
  return most;
}

size_t count(const std::vector<SketchLine>& lines, int color) {
  return static_cast<size_t>(std::count_if(
      lines.begin(), lines.end(), [&](const SketchLine& line) { return line.color == color; }));
}

TEST(PairSketch, HasTheSameSizeOnTheScreenAtEveryZoomAndTwist) {
  const SketchPoint source{40500000, 3500000};
  for (const double unit : {0.001, 1.0, 250.0}) {
    for (const double twist : {0.0, 0.7}) {
      const SketchPoint target{source.x + 100 * unit, source.y + 50 * unit};
      const auto lines = sketchPair(source, target, 12, {unit, twist});
      EXPECT_NEAR(reach(lines, kSourceColor, source, unit), 8, 1e-3);
      EXPECT_NEAR(reach(lines, kTargetColor, target, unit), 7, 1e-3);
      EXPECT_NEAR(reach(lines, kArrowColor, source, unit), std::hypot(100, 50) - 7, 1e-3);
      EXPECT_EQ(count(lines, kArrowColor), 3U);
      EXPECT_EQ(count(lines, kNumberColor), 2U + 5U);  // strokes of 1 and of 2
      // The number stands right of and above the target on the screen.
      for (const SketchLine& line : lines) {
        if (line.color != kNumberColor) continue;
        const double dx = line.from.x - target.x, dy = line.from.y - target.y;
        EXPECT_GT(dx * std::cos(twist) - dy * std::sin(twist), 7 * unit);
        EXPECT_GT(dx * std::sin(twist) + dy * std::cos(twist), 0);
      }
    }
  }
}

TEST(PairSketch, APairThatStandsTogetherHasNoArrow) {
  EXPECT_EQ(count(sketchPair({0, 0}, {13, 0}, 1, {1, 0}), kArrowColor), 0U);
  EXPECT_EQ(count(sketchPair({0, 0}, {0, 0}, 1, {1, 0}), kArrowColor), 0U);
  EXPECT_EQ(count(sketchPair({0, 0}, {15, 0}, 1, {1, 0}), kArrowColor), 3U);
}

AcGePoint2dArray pair(double x1, double y1, double x2, double y2) {
  AcGePoint2dArray nodes;
  nodes.append(AcGePoint2d(x1, y1));
  nodes.append(AcGePoint2d(x2, y2));
  return nodes;
}

QImage pictureOf(const host::HostApp& app) {
  const host::ViewState view = app.screenView();
  QImage image(view.pixelWidth, view.pixelHeight, QImage::Format_RGB32);
  QPainter painter(&image);
  app.renderTo(painter, view.pixelWidth, view.pixelHeight);
  return image;
}

bool isReddish(QRgb pixel) {
  return qRed(pixel) > 130 && qGreen(pixel) < 80 && qBlue(pixel) < 80;
}

TEST(PairMarkers, StandOverThePictureUntilItIsDrawnAnew) {
  const tarn::test::ModuleHost host;
  host.app->runLine("ZOOM C 40500000,3500000 600");
  const QImage before = pictureOf(*host.app);
  PairMarkers markers;
  markers.add(pair(40500000, 3500000, 40500200, 3500100));
  const QImage shown = pictureOf(*host.app);
  EXPECT_TRUE(isReddish(shown.pixel(500 - 4, 300)));
  EXPECT_FALSE(isReddish(shown.pixel(500 - 14, 300)));
  const size_t lines = host.app->documents().current().temporaryVectors().lines.size();
  EXPECT_GT(lines, 20U);
  host.app->regenerate();
  EXPECT_EQ(pictureOf(*host.app), before);
  markers.repaint();
  EXPECT_EQ(pictureOf(*host.app), shown);
  markers.repaint();
  EXPECT_EQ(host.app->documents().current().temporaryVectors().lines.size(), lines);

  // On half the scale the cross is as large as before.
  host.app->runLine("ZOOM 0.5x");
  markers.repaint();
  EXPECT_TRUE(isReddish(pictureOf(*host.app).pixel(500 - 6, 300)));

  markers.add(pair(1, 2, 3, 4));
  EXPECT_FALSE(markers.remove(2));
  EXPECT_TRUE(markers.remove(0));
  EXPECT_EQ(markers.count(), 1U);
  markers.clear();
  EXPECT_TRUE(host.app->documents().current().temporaryVectors().lines.empty());
}

}  // namespace
}  // namespace tarn::image
