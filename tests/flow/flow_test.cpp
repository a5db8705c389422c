// From a file on disk to pixels in the frame: the picture of the real program against GDAL's
// reading of the full-resolution pixels of the same ground.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/flow/flowfixture.h"

namespace tarn::test {
namespace {

struct Case {
  const char* name;
  double reduction;      // image pixels a screen pixel
  double column, row;    // image pixel in the middle of the view
  double twist;          // degrees
  const char* settings;  // script lines before the picture
  int width = 640;
  int height = 480;
};

const Case kCases[] = {
    {"enlarged four times", 0.25, 4001.3, 3002.7, 0, ""},
    {"enlarged a little", 0.7, 1234.56, 2345.67, 0, ""},
    {"one to one on the grid", 1, 4000, 3000, 0, ""},
    {"one to one between the grid", 1, 2500.37, 1800.81, 0, ""},
    {"by 1.5", 1.5, 3333.3, 2222.2, 0, ""},
    {"by 2", 2, 5000.5, 3000.25, 0, ""},
    {"by 3.7", 3.7, 3500.1, 2900.9, 0, ""},
    {"by 8, large screen", 8, 4000.4, 3000.3, 0, "", 960, 700},
    {"by 37", 37, 4000, 3000, 0, ""},
    {"by 100", 100, 4100, 3100, 0, ""},
    {"by 400", 400, 4000, 3000, 0, ""},
    {"outside at the upper left", 5, 300.7, 200.3, 0, ""},
    {"outside at the lower right", 3, 7700.2, 5800.6, 0, ""},
    {"twisted by 30 degrees", 2.5, 4000, 3000, 30, ""},
    {"twisted by -30 degrees", 8, 3900, 3100, -30, ""},
    {"twisted by 90 degrees", 3, 4000, 3000, 90, ""},
    {"twisted and outside", 6, 500, 700, 30, ""},
    {"clarity 4", 2, 4000.3, 3000.9, 0, "SetImageClarityRatio\n4\n"},
    {"offset 2", 3.3, 4000.1, 3000.1, 0, "SetImageOffsetRatio\n2\n"},
};

View viewOf(const Case& c) {
  View view;
  view.width = c.width;
  view.screenHeight = c.height;
  view.centerX = kLeft + c.column * kPixel;
  view.centerY = kTop - c.row * kPixel;
  view.height = c.height * c.reduction * kPixel;
  view.twist = c.twist;
  return view;
}

TEST_F(Flow, SmoothPicturesEqualFullResolutionPixels) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    const View view = viewOf(c);
    const QImage image = picture({scratch_->at("smooth.tif")}, view, c.settings);
    if (image.isNull()) continue;
    const Difference d = compare(image, *smooth_, view);
    EXPECT_GT(d.compared, 150);
    EXPECT_LE(d.beyond * 1000, d.compared)
        << d.beyond << " of " << d.compared << ", largest " << d.largest;
  }
}

TEST_F(Flow, NoFeatureIsDisplacedByMoreThanHalfAScreenPixel) {
  for (const Case& c : kCases) {
    if (std::string(c.settings).find("Clarity") != std::string::npos) continue;
    SCOPED_TRACE(c.name);
    const View view = viewOf(c);
    const int channel = c.reduction <= 4 ? 0 : c.reduction <= 40 ? 1 : 2;
    const int check = channel == 0 ? 40 : channel == 1 ? 400 : 2000;
    if (check / c.reduction < 8) continue;  // no check is large enough to have two clean sides
    const QImage image = picture({scratch_->at("checks.tif")}, view, c.settings);
    if (image.isNull()) continue;
    for (const bool vertical : {true, false}) {
      const Edges edges = visitEdges(image, view, check, channel, vertical);
      EXPECT_GT(edges.found, 3);
      EXPECT_LE(edges.worst, 0.5) << (vertical ? "vertical sides" : "horizontal sides");
    }
  }
}

TEST_F(Flow, LaterImagesLieOverEarlierOnes) {
  const Raster upper = makeRaster(3000, 3000, kLeft + 250, kTop - 150, kPixel,
                                  [](int column, int row, uint8_t* rgb) {
                                    rgb[0] = static_cast<uint8_t>(40 + row / 30);
                                    rgb[1] = static_cast<uint8_t>(60 + column / 30);
                                    rgb[2] = 200;
                                  });
  ASSERT_TRUE(writeRaster(upper, scratch_->at("upper.tif")));
  View view = viewOf(kCases[7]);
  const QImage image = picture({scratch_->at("smooth.tif"), scratch_->at("upper.tif")}, view, "");
  const Difference over = compare(image, upper, view);
  EXPECT_GT(over.compared, 10000);
  EXPECT_LE(over.beyond * 1000, over.compared) << over.largest;
  Raster under = *smooth_;
  long compared = 0;
  for (int y = 0; y < image.height(); y += 3) {
    for (int x = 0; x < image.width(); x += 3) {
      double expected[3];
      double gx = 0;
      double gy = 0;
      view.toGround(x, y, gx, gy);
      const bool covered = gx > upper.left - 5 && gx < upper.left + 305 && gy < upper.top + 5 &&
                           gy > upper.top - 305;
      if (covered || !expectedPixel(under, view, x, y, 1, expected)) continue;
      ++compared;
      ASSERT_NEAR(qGreen(image.pixel(x, y)), expected[1], 3);
    }
  }
  EXPECT_GT(compared, 1000);
}

TEST_F(Flow, OutsideTheImageNothingIsDrawn) {
  const View view = viewOf(kCases[11]);
  const QImage image = picture({scratch_->at("smooth.tif")}, view, "");
  const QRgb background = image.pixel(0, 0);
  double edgeX = 0;
  double edgeY = 0;
  view.toScreen(kLeft, kTop, edgeX, edgeY);
  ASSERT_GT(edgeX, 50);
  ASSERT_GT(edgeY, 50);
  for (int y = 0; y < view.screenHeight; ++y) {
    for (int x = 0; x < view.width; ++x) {
      const bool outside = x + 1 < edgeX - 0.5 || y + 1 < edgeY - 0.5;
      if (outside) {
        ASSERT_EQ(image.pixel(x, y), background) << x << "," << y;
      } else if (x > edgeX + 0.5 && y > edgeY + 0.5) {
        ASSERT_NE(image.pixel(x, y), background) << x << "," << y;
      }
    }
  }
}

TEST_F(Flow, MillimetresSurviveAnEastingOfFortyMillion) {
  constexpr double kX = 40500123.456;
  constexpr double kY = 3512345.678;
  const Raster raster =
      makeRaster(200, 200, kX - 0.2, kY + 0.2, 0.002, [](int column, int row, uint8_t* rgb) {
        const bool marked = column >= 98 && column < 102 && row >= 98 && row < 102;
        rgb[0] = marked ? 250 : 90;
        rgb[1] = 90;
        rgb[2] = 90;
      });
  ASSERT_TRUE(writeRaster(raster, scratch_->at("point.tif")));
  View view;
  view.centerX = kX;
  view.centerY = kY;
  view.height = 0.12;
  const QImage image = picture({scratch_->at("point.tif")}, view, "");
  double sumX = 0;
  double sumY = 0;
  long count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qRed(image.pixel(x, y)) < 200) continue;
      sumX += x + 0.5;
      sumY += y + 0.5;
      ++count;
    }
  }
  ASSERT_NEAR(static_cast<double>(count), 32 * 32, 70);
  EXPECT_NEAR(sumX / static_cast<double>(count), view.width / 2.0, 0.5);
  EXPECT_NEAR(sumY / static_cast<double>(count), view.screenHeight / 2.0, 0.5);
}

}  // namespace
}  // namespace tarn::test
