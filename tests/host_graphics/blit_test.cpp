#include "host/graphics/blit.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <cmath>

#include "host/graphics/renderer.h"

namespace tarn::host {
namespace {

constexpr double kDegree = 3.141592653589793 / 180;
constexpr QRgb kBackground = 0xff102030;

/// Opaque pixels that all differ.
QImage pattern(int width, int height) {
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      image.setPixel(x, y, qRgb((x * 7) & 255, (y * 13) & 255, (x * 31 + y * 17) & 255));
    }
  }
  return image;
}

ImageItem placed(const QImage& image, double x, double y, double cell) {
  return {image, {x, y}, {image.width() * cell, 0}, {0, image.height() * cell}};
}

ViewState view(double cx, double cy, double height, int w, int h, double degrees = 0) {
  ViewState out;
  out.centerX = cx;
  out.centerY = cy;
  out.height = height;
  out.twist = degrees * kDegree;
  out.pixelWidth = w;
  out.pixelHeight = h;
  return out;
}

QImage drawn(const std::vector<ImageItem>& items, const ViewState& v) {
  Scene scene;
  DisplayList list;
  for (const ImageItem& item : items) list.emplace_back(item);
  scene.set(1, std::move(list));
  QImage out(v.pixelWidth, v.pixelHeight, QImage::Format_RGB32);
  QPainter painter(&out);
  RenderStyle style;
  style.background = kBackground;
  render(painter, scene, v, style);
  return out;
}

TEST(Blit, aCellOfOnePixelIsCopiedExactlyFarFromTheOrigin) {
  const QImage source = pattern(60, 40);
  const double unit = 0.35;
  // The view's pixel grid and the picture's cells coincide; the picture begins at pixel (20, 10).
  const ViewState v = view(40500123.456, 3512345.678, 80 * unit, 100, 80);
  const GroundPoint lowerLeft = groundFromPixel(v, {20, 50});
  const ImageItem item = placed(source, lowerLeft.x, lowerLeft.y, unit);
  ASSERT_EQ(planBlit(item, v).mode, BlitMode::kExact);
  const QImage out = drawn({item}, v);
  int wrong = 0;
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 100; ++x) {
      const bool inside = x >= 20 && x < 80 && y >= 10 && y < 50;
      const QRgb expected = inside ? source.pixel(x - 20, y - 10) : kBackground;
      wrong += out.pixel(x, y) != (expected | 0xff000000) ? 1 : 0;
    }
  }
  EXPECT_EQ(wrong, 0);
}

TEST(Blit, modesFollowCellSizeAndTwist) {
  struct Case {
    double cellPixels;
    double degrees;
    BlitMode mode;
  };
  const Case cases[] = {
      {1, 0, BlitMode::kExact},      {1 + 1e-9, 0, BlitMode::kExact}, {3, 0, BlitMode::kNearest},
      {0.9, 0, BlitMode::kBilinear}, {1, 30, BlitMode::kBilinear},    {8, 30, BlitMode::kNearest},
      {1, 90, BlitMode::kBilinear},
  };
  const QImage source = pattern(20, 20);
  for (const Case& c : cases) {
    const ViewState v = view(0, 0, 100, 100, 100, c.degrees);
    EXPECT_EQ(planBlit(placed(source, -5, -5, c.cellPixels), v).mode, c.mode)
        << c.cellPixels << " at " << c.degrees;
  }
  const ViewState away = view(1e6, 0, 100, 100, 100);
  EXPECT_EQ(planBlit(placed(source, 0, 0, 1), away).mode, BlitMode::kNothing);
  EXPECT_EQ(planBlit({source, {0, 0}, {0, 0}, {0, 0}}, away).mode, BlitMode::kNothing);
}

TEST(Blit, enlargedCellsKeepTheirColours) {
  const QImage source = pattern(10, 10);
  const QImage out = drawn({placed(source, 0, 0, 5)}, view(25, 25, 50, 50, 50));
  for (int y = 0; y < 50; ++y) {
    for (int x = 0; x < 50; ++x) ASSERT_EQ(out.pixel(x, y), source.pixel(x / 5, y / 5));
  }
}

TEST(Blit, picturesThatMeetLeaveNoSeam) {
  QImage white(33, 33, QImage::Format_ARGB32_Premultiplied);
  white.fill(qRgb(250, 250, 250));
  for (const double degrees : {0.0, 17.0, -30.0, 90.0}) {
    for (const double height : {100.0, 137.7, 60.3}) {
      std::vector<ImageItem> tiles;
      for (int i = -5; i < 5; ++i) {
        for (int j = -5; j < 5; ++j) tiles.push_back(placed(white, i * 33.0, j * 33.0, 1));
      }
      const QImage out = drawn(tiles, view(0.37, 0.21, height, 100, 100, degrees));
      int dark = 0;
      for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) dark += qRed(out.pixel(x, y)) < 250 ? 1 : 0;
      }
      EXPECT_EQ(dark, 0) << degrees << " at " << height;
    }
  }
}

TEST(Blit, aMarkStandsWhereTheViewSaysAtEveryTwist) {
  QImage source(101, 101, QImage::Format_ARGB32_Premultiplied);
  source.fill(qRgb(0, 0, 200));
  for (int y = 68; y <= 72; ++y) {
    for (int x = 18; x <= 22; ++x) source.setPixel(x, y, qRgb(255, 0, 0));
  }
  const double east = 40500000;
  const double north = 3500000;
  for (const double degrees : {30.0, -30.0, 90.0}) {
    const ViewState v = view(east + 50, north + 50, 200, 300, 300, degrees);
    const QImage out = drawn({placed(source, east, north, 1)}, v);
    // The middle of the mark is image position (20.5, 70.5) from the top.
    const PixelPoint expected = pixelFromGround(v, {east + 20.5, north + 101 - 70.5});
    double sum = 0, sumX = 0, sumY = 0;
    for (int y = 0; y < 300; ++y) {
      for (int x = 0; x < 300; ++x) {
        if (qBlue(out.pixel(x, y)) == qBlue(kBackground)) continue;
        const double red = qRed(out.pixel(x, y));
        sum += red;
        sumX += red * (x + 0.5);
        sumY += red * (y + 0.5);
      }
    }
    EXPECT_NEAR(sumX / sum, expected.x, 0.2) << degrees;
    EXPECT_NEAR(sumY / sum, expected.y, 0.2) << degrees;
  }
}

TEST(Blit, transparentPixelsShowWhatIsBelow) {
  QImage holes = pattern(4, 4);
  holes.setPixel(1, 2, 0);
  QImage below(4, 4, QImage::Format_ARGB32_Premultiplied);
  below.fill(qRgb(9, 8, 7));
  const QImage out = drawn({placed(below, 0, 0, 1), placed(holes, 0, 0, 1)}, view(2, 2, 4, 4, 4));
  EXPECT_EQ(out.pixel(1, 2), qRgb(9, 8, 7));
  EXPECT_EQ(out.pixel(2, 2), holes.pixel(2, 2));
}

}  // namespace
}  // namespace tarn::host
