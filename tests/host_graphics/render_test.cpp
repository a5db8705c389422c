#include "host/graphics/renderer.h"

#include <gtest/gtest.h>

#include <QPainter>

#include "host/graphics/color.h"
#include "host/graphics/recorder.h"

namespace tarn::host {
namespace {

ViewState hundred() {
  ViewState view;
  view.centerX = 40500050;
  view.centerY = 3500050;
  view.height = 100;
  view.pixelWidth = 200;
  view.pixelHeight = 200;
  return view;
}

AcGePoint3d at(double x, double y) {
  return {40500000 + x, 3500000 + y, 0};
}

QImage drawn(DisplayList list) {
  Scene scene;
  scene.set(1, std::move(list));
  QImage out(200, 200, QImage::Format_RGB32);
  QPainter painter(&out);
  render(painter, scene, hundred(), RenderStyle());
  return out;
}

int countOf(const QImage& image, QRgb color) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == color ? 1 : 0;
  }
  return count;
}

TEST(Recorder, alphaIsMultipliedInAndZeroIsNothing) {
  AcGiPixelBGRA32 pixels[4] = {
      {30, 20, 10, 255}, {30, 20, 10, 0}, {200, 100, 50, 128}, {1, 2, 3, 127}};
  const AcGiImageBGRA32 source(2, 2, pixels);
  const QImage full = premultipliedImage(source, AcGiGeometry::kTransparency8Bit);
  const auto* words = reinterpret_cast<const QRgb*>(full.constBits());
  EXPECT_EQ(words[0], qRgba(10, 20, 30, 255));
  EXPECT_EQ(words[1], 0u);
  EXPECT_EQ(words[2], qPremultiply(qRgba(50, 100, 200, 128)));
  const QImage opaque = premultipliedImage(source, AcGiGeometry::kTransparencyOff);
  EXPECT_EQ(opaque.pixel(1, 0), qRgb(10, 20, 30));
  const QImage oneBit = premultipliedImage(source, AcGiGeometry::kTransparency1Bit);
  EXPECT_EQ(qAlpha(oneBit.pixel(0, 1)), 255);
  EXPECT_EQ(qAlpha(oneBit.pixel(1, 1)), 0);
}

TEST(Recorder, picturesAreCopiedAndColoursResolved) {
  DisplayList list;
  WorldDrawRecorder draw(list, nullptr, 3, 256);
  AcGiPixelBGRA32 pixel(1, 2, 3, 255);
  {
    AcGiPixelBGRA32 pixels[1] = {pixel};
    draw.geometry().image(AcGiImageBGRA32(1, 1, pixels, false), at(0, 0), AcGeVector3d(1, 0, 0),
                          AcGeVector3d(0, 1, 0));
    pixels[0] = AcGiPixelBGRA32();
  }
  const AcGePoint3d points[] = {at(0, 0), at(10, 10)};
  draw.geometry().polyline(2, points);
  draw.subEntityTraits().setColor(1);
  draw.geometry().polyline(2, points);
  ASSERT_EQ(list.size(), 3u);
  EXPECT_EQ(std::get<ImageItem>(list[0]).image.pixel(0, 0), qRgb(3, 2, 1));
  EXPECT_EQ(std::get<LineItem>(list[1]).color, 3u);
  EXPECT_EQ(std::get<LineItem>(list[2]).color, 1u);
}

TEST(Render, linesFarOutsideAreCutNotLost) {
  DisplayList list;
  WorldDrawRecorder draw(list, nullptr, 1, 256);
  const AcGePoint3d points[] = {at(-1e9, 50.2), at(1e9, 50.2)};
  draw.geometry().polyline(2, points);
  const QImage out = drawn(std::move(list));
  EXPECT_EQ(countOf(out, colorOfIndex(1, 0)), 200);
  EXPECT_EQ(out.pixel(100, 99), colorOfIndex(1, 0));
}

TEST(Render, areasAreFilledInDrawingOrder) {
  DisplayList list;
  WorldDrawRecorder draw(list, nullptr, 1, 256);
  const AcGePoint3d square[] = {at(10, 10), at(60, 10), at(60, 60), at(10, 60)};
  draw.geometry().polygon(4, square);
  draw.subEntityTraits().setColor(5);
  const AcGePoint3d inner[] = {at(20, 20), at(40, 20), at(40, 40), at(20, 40)};
  draw.geometry().polygon(4, inner);
  const QImage out = drawn(std::move(list));
  EXPECT_EQ(countOf(out, colorOfIndex(1, 0)), 100 * 100 - 40 * 40);
  EXPECT_EQ(countOf(out, colorOfIndex(5, 0)), 40 * 40);
}

TEST(Render, chineseTextLeavesInkWhereItStands) {
  DisplayList list;
  WorldDrawRecorder draw(list, nullptr, 2, 256);
  draw.geometry().text(at(10, 40), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), 20, 1, 0,
                       ACRX_T("影像"));
  const QImage out = drawn(std::move(list));
  int ink = 0;
  int outside = 0;
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      const bool marked = out.pixel(x, y) != RenderStyle().background;
      const bool near = x >= 18 && x < 190 && y >= 60 && y <= 135;
      ink += marked && near ? 1 : 0;
      outside += marked && !near ? 1 : 0;
    }
  }
  EXPECT_GT(ink, 300);
  EXPECT_EQ(outside, 0);
}

TEST(Color, indicesHaveTheirColours) {
  EXPECT_EQ(colorOfIndex(1, 0), qRgb(255, 0, 0));
  EXPECT_EQ(colorOfIndex(7, 0xff202020), qRgb(255, 255, 255));
  EXPECT_EQ(colorOfIndex(7, 0xfff0f0f0), qRgb(0, 0, 0));
  EXPECT_EQ(colorOfIndex(30, 0), qRgb(255, 128, 0));
  EXPECT_EQ(colorOfIndex(255, 0), qRgb(255, 255, 255));
}

TEST(Scene, keepsOrderAndForgets) {
  Scene scene;
  for (const Scene::Key key : {5, 2, 9}) scene.set(key, {});
  scene.set(2, {LineItem{}});
  EXPECT_EQ(scene.order(), (std::vector<Scene::Key>{5, 2, 9}));
  scene.keepInOrder({9, 2, 77});
  EXPECT_EQ(scene.order(), (std::vector<Scene::Key>{9, 2}));
  EXPECT_EQ(scene.find(2)->size(), 1u);
  EXPECT_EQ(scene.find(5), nullptr);
}

}  // namespace
}  // namespace tarn::host
