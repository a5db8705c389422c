#include "tests/flow/flowfixture.h"

#include <algorithm>
#include <cmath>

#include "base/file.h"

namespace tarn::test {

namespace {

void paintSmooth(int column, int row, uint8_t* rgb) {
  rgb[0] = static_cast<uint8_t>(128 + 60 * std::sin(column / 640.0) + 50 * std::cos(row / 570.0));
  rgb[1] = static_cast<uint8_t>(120 + 90 * std::sin((column + row) / 900.0));
  rgb[2] = static_cast<uint8_t>(30 + 0.024 * column + 0.003 * row);
}

// Checks of 40, 400 and 2000 pixels in red, green and blue: one of them fits every reduction.
void paintChecks(int column, int row, uint8_t* rgb) {
  const int sizes[] = {40, 400, 2000};
  for (int c = 0; c < 3; ++c) rgb[c] = ((column / sizes[c] + row / sizes[c]) & 1) ? 200 : 50;
}

double sampled(const QImage& image, double x, double y, int channel) {
  const double fx = x - 0.5;
  const double fy = y - 0.5;
  const int ix = static_cast<int>(std::floor(fx));
  const int iy = static_cast<int>(std::floor(fy));
  const auto value = [&](int px, int py) {
    const QRgb c =
        image.pixel(std::clamp(px, 0, image.width() - 1), std::clamp(py, 0, image.height() - 1));
    return channel == 0 ? qRed(c) : channel == 1 ? qGreen(c) : qBlue(c);
  };
  const double tx = fx - ix;
  const double ty = fy - iy;
  return (value(ix, iy) * (1 - tx) + value(ix + 1, iy) * tx) * (1 - ty) +
         (value(ix, iy + 1) * (1 - tx) + value(ix + 1, iy + 1) * tx) * ty;
}

/// How far, in screen pixels along the edge's normal, the picture has an edge from where it
/// belongs: the edge between two checks is where the profile across it has its half height.
double edgeDisplacement(const QImage& image, double px, double py, double nx, double ny,
                        int channel) {
  constexpr double kReach = 3;
  constexpr double kStep = 0.01;
  const double before = sampled(image, px - kReach * nx, py - kReach * ny, channel);
  const double after = sampled(image, px + kReach * nx, py + kReach * ny, channel);
  double bright = 0;
  for (double t = -kReach + kStep / 2; t < kReach; t += kStep) {
    bright +=
        (sampled(image, px + t * nx, py + t * ny, channel) - before) / (after - before) * kStep;
  }
  return kReach - bright;
}

}  // namespace

Scratch* Flow::scratch_ = nullptr;
Raster* Flow::smooth_ = nullptr;
Raster* Flow::checks_ = nullptr;

void Flow::SetUpTestSuite() {
  scratch_ = new Scratch("tarn_flow_");
  const std::string smooth = scratch_->at("smooth.tif");
  const std::string checks = scratch_->at("checks.tif");
  const auto make = [](void (*paint)(int, int, uint8_t*)) {
    return makeRaster(kWidth, kHeight, kLeft, kTop, kPixel, paint);
  };
  ASSERT_TRUE(writeRaster(make(paintSmooth), smooth, "GTiff", {"TILED=YES"}));
  ASSERT_TRUE(writeRaster(make(paintChecks), checks));
  smooth_ = new Raster(readRaster(smooth));
  checks_ = new Raster(readRaster(checks));
}
void Flow::TearDownTestSuite() {
  delete checks_;
  delete smooth_;
  delete scratch_;
}

QImage Flow::picture(const std::vector<std::string>& images, const View& view,
                     const std::string& script) {
  const std::string path = scratch_->at("view.png");
  EXPECT_TRUE(removeAll(path));
  std::vector<std::string> arguments = {"--size",    view.size(), "--view",   view.argument(),
                                        "--picture", path,        "--script", "-"};
  arguments.insert(arguments.end(), images.begin(), images.end());
  // The settings stay in the drawing; each run is a drawing of its own.
  const Outcome outcome = runCadhost(*scratch_, arguments, script + "REGEN\n");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  const QImage image = QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_RGB32);
  EXPECT_EQ(image.width(), view.width) << outcome.output;
  return image;
}

Difference compare(const QImage& image, const Raster& raster, const View& view) {
  Difference difference;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      double expected[3];
      if (!expectedPixel(raster, view, x, y, 1.0, expected)) continue;
      const QRgb got = image.pixel(x, y);
      const int channels[] = {qRed(got), qGreen(got), qBlue(got)};
      double most = 0;
      for (int c = 0; c < 3; ++c) most = std::max(most, std::fabs(channels[c] - expected[c]));
      ++difference.compared;
      difference.beyond += most > 2.5;  // 2 and the rounding of the expectation
      difference.largest = std::max(difference.largest, most);
    }
  }
  return difference;
}

Edges visitEdges(const QImage& image, const View& view, int check, int channel, bool vertical) {
  Edges edges;
  const double co = std::cos(view.twist * 3.14159265358979 / 180);
  const double si = std::sin(view.twist * 3.14159265358979 / 180);
  const double nx = vertical ? co : si;
  const double ny = vertical ? -si : co;
  for (int i = 1; i * check < (vertical ? kWidth : kHeight); ++i) {
    for (int j = 0; (j + 1) * check <= (vertical ? kHeight : kWidth); ++j) {
      const double column = vertical ? i * check : (j + 0.5) * check;
      const double row = vertical ? (j + 0.5) * check : i * check;
      double px = 0;
      double py = 0;
      view.toScreen(kLeft + column * kPixel, kTop - row * kPixel, px, py);
      if (px < 6 || py < 6 || px > view.width - 6 || py > view.screenHeight - 6) continue;
      ++edges.found;
      edges.worst =
          std::max(edges.worst, std::fabs(edgeDisplacement(image, px, py, nx, ny, channel)));
    }
  }
  return edges;
}

}  // namespace tarn::test
