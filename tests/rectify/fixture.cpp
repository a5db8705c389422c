#include "tests/rectify/fixture.h"

#include <algorithm>

namespace tarn::rectify {

using raster::Picture;
using test::recorded;

Picture ramp(int width, int height) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.pixels.push_back(static_cast<uint8_t>(20 + 200.0 * (x + 0.5) / width));
      picture.pixels.push_back(static_cast<uint8_t>(20 + 200.0 * (y + 0.5) / height));
      picture.pixels.push_back(128);
    }
  }
  return picture;
}

void RectifyTest::SetUp() {
  test::RecordingInterface::registerSelf();
  kel::Object<IAppManager> manager("N", "test", 1);
  ASSERT_TRUE(manager->loadPlugins("plugins", 0));
  recorded() = {};
  recorded().folder = scratch_ / "cache";
}

void RectifyTest::TearDown() {
  kel::unregisterImplementation("N", IUserInterface::interfaceId());
}

kel::Object<IRectifyDialog> RectifyTest::open(const std::string& path,
                                              CallBackRectifyOperator* callback) {
  kel::Object<IRectifyDialog> dialog("N", "test", 2);
  if (dialog.isNull()) return dialog;
  dialog->prepare(0);
  EXPECT_TRUE(dialog->openImage(path, callback))
      << (recorded().messages.empty() ? "" : recorded().messages.back());
  return dialog;
}

std::string RectifyTest::writeRamp(const std::string& name, int width, int height, double left,
                                   double top, double pixel) {
  raster::FileForm form;
  form.georeferenced = false;
  const std::string path = scratch_ / (name + ".tif");
  writePicture(path, ramp(width, height), form);
  char text[200];
  std::snprintf(text, sizeof text, "%.10f\n0\n0\n%.10f\n%.10f\n%.10f\n", pixel, -pixel,
                left + pixel / 2, top - pixel / 2);
  raster::writeText(scratch_ / (name + ".tfw"), text);
  return path;
}

Points pointsOver(IRectifyDialog& image, int side, const GroundMap& map) {
  int width = 0, height = 0;
  double left = 0, top = 0, stepX = 0, stepY = 0;
  image.getImageGeometry(width, height, left, top, stepX, stepY);
  Points points;
  for (int j = 0; j < side; ++j) {
    for (int i = 0; i < side; ++i) {
      const double x = left + stepX * width * (0.05 + 0.9 * i / (side - 1));
      const double y = top + stepY * height * (0.05 + 0.9 * j / (side - 1));
      double X = 0, Y = 0;
      map(x, y, X, Y);
      points.sources.push_back({x, y, 0.0});
      points.targets.push_back({X, Y, 0.0});
    }
  }
  return points;
}

void rectify(IRectifyDialog& image, int method, const Points& points) {
  image.setRectifyMethod(method);
  image.setControlPoints(points.sources, points.targets);
  image.computeTransform();
  EXPECT_EQ(image.rectifyStatus(), 0) << static_cast<int>(image.quality().fault);
  image.acceptTransform();
}

Shown show(IRectifyDialog& image, int columns, bool smooth) {
  const auto source = kel::Object<IImageDivision>::adopt(image.imageSource());
  source->setAntiAliasing(smooth);
  Shown shown;
  const double cell = std::max(source->width(), source->height()) / static_cast<double>(columns);
  shown.columns = static_cast<int>(std::ceil(source->width() / cell));
  shown.rows = static_cast<int>(std::ceil(source->height() / cell));
  shown.cells.resize(static_cast<size_t>(shown.columns) * shown.rows * 3);
  source->announceWindow(0, 0, cell, cell);
  EXPECT_TRUE(source->readRegion(0, 0, shown.columns, shown.rows, 1, 1, shown.cells.data()));
  const double* numbers = source->geoTransform();
  shown.stepX = numbers[0] * cell;
  shown.stepY = numbers[3] * cell;
  shown.left = numbers[4] + shown.stepX / 2;
  shown.top = numbers[5] + shown.stepY / 2;
  return shown;
}

Placed comparePlaces(const Shown& shown, int width, int height, const PixelOfGround& pixelOf) {
  Placed placed;
  for (int r = 0; r < shown.rows; ++r) {
    for (int c = 0; c < shown.columns; ++c) {
      double x = 0, y = 0;
      const bool found = pixelOf(shown.left + c * shown.stepX, shown.top + r * shown.stepY, x, y);
      const double rim = 0.015 * std::max(width, height);
      const bool inside = found && x > rim && y > rim && x < width - rim && y < height - rim;
      const bool outside = !found || x < -rim || y < -rim || x > width + rim || y > height + rim;
      const bool black = shown.isBlack(c, r);
      if (outside) placed.stray += black ? 0 : 1;
      if (!inside) continue;
      placed.holes += black ? 1 : 0;
      if (black) continue;
      ++placed.compared;
      const double seenX = (shown.at(c, r)[0] - 20 + 0.5) / 200.0 * width;
      const double seenY = (shown.at(c, r)[1] - 20 + 0.5) / 200.0 * height;
      placed.error = std::max({placed.error, std::fabs(seenX - x), std::fabs(seenY - y)});
    }
  }
  return placed;
}

}  // namespace tarn::rectify
