#include "tests/plot/plotfixture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "base/path.h"
#include "base/text.h"
#include "tests/support/system.h"

namespace tarn::test {

namespace {

constexpr double kMostDifference = 2.5;  // 2 and the rounding of the expectation

void paint(int column, int row, uint8_t* rgb) {
  rgb[0] = static_cast<uint8_t>(128 + 60 * std::sin(column / 640.0) + 50 * std::cos(row / 570.0));
  rgb[1] = static_cast<uint8_t>(120 + 90 * std::sin((column + row) / 900.0));
  rgb[2] = static_cast<uint8_t>(30 + 0.024 * column + 0.003 * row);
}

View viewOf(const Placed& placed, const QImage& page, double dot) {
  View view;
  view.width = page.width();
  view.screenHeight = page.height();
  view.height = placed.unit * dot * page.height();
  view.twist = placed.turn;
  view.centerX = placed.x;
  view.centerY = placed.y;
  double x = 0;
  double y = 0;
  view.toGround(placed.mmX / dot, placed.mmY / dot, x, y);
  view.centerX += placed.x - x;
  view.centerY += placed.y - y;
  return view;
}

double difference(QRgb got, const double* expected) {
  const int channels[] = {qRed(got), qGreen(got), qBlue(got)};
  double most = 0;
  for (int c = 0; c < 3; ++c) most = std::max(most, std::fabs(channels[c] - expected[c]));
  return most;
}

struct Differences {
  long compared = 0;
  long beyond = 0;
  double largest = 0;
  void add(double value) {
    ++compared;
    beyond += value > kMostDifference;
    largest = std::max(largest, value);
  }
  void expectSmall() const {
    EXPECT_LE(beyond * 1000, compared) << beyond << " of " << compared << ", largest " << largest;
  }
};

/// Whole dots well inside.
QRect dotsInside(const Placed& placed, double dot) {
  const QRectF mm = placed.inside.adjusted(0.8, 0.8, -0.8, -0.8);
  const int left = static_cast<int>(std::ceil(mm.left() / dot));
  const int top = static_cast<int>(std::ceil(mm.top() / dot));
  return {left, top, static_cast<int>(mm.right() / dot) - left,
          static_cast<int>(mm.bottom() / dot) - top};
}

/// GDAL reduces the ground of these dots to as many pixels.
void expectGdalsWindow(const QImage& page, const View& view, const QRect& dots,
                       const std::string& file) {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  view.toGround(dots.left(), dots.top(), left, top);
  view.toGround(dots.left() + dots.width(), dots.top() + dots.height(), right, bottom);
  const Raster window = readWindow(file, left, top, right, bottom, dots.width(), dots.height());
  ASSERT_EQ(window.width, dots.width());
  Differences differences;
  for (int y = 0; y < dots.height(); ++y) {
    for (int x = 0; x < dots.width(); ++x) {
      const uint8_t* rgb = window.at(x, y);
      const double expected[] = {double(rgb[0]), double(rgb[1]), double(rgb[2])};
      differences.add(difference(page.pixel(dots.left() + x, dots.top() + y), expected));
    }
  }
  differences.expectSmall();
}

/// Dots per inch of each picture in a PDF.
std::vector<int> resolutionsOf(const std::string& file) {
  const Outcome outcome = runProgram("/usr/bin/pdfimages", {"-list", file});
  std::vector<int> all;
  for (const std::string& line : split(outcome.output, '\n')) {
    char kind[32] = "";
    int resolution = 0;
    // Page, number, kind, width, height, colour, components, bits, encoding, interpolation, object
    // and its generation, resolution.
    const int read = std::sscanf(
        line.c_str(), "%*d %*d %31s %*d %*d %*s %*d %*d %*s %*s %*d %*d %d", kind, &resolution);
    if (read == 2 && std::string(kind) == "image") all.push_back(resolution);
  }
  return all;
}

}  // namespace

Scratch* Plot::scratch_ = nullptr;
Raster* Plot::raster_ = nullptr;

void Plot::SetUpTestSuite() {
  scratch_ = new Scratch("tarn_plot_");
  const Raster raster = makeRaster(kWidth, kHeight, kLeft, kTop, kPixel, paint);
  ASSERT_TRUE(writeRaster(raster, at("smooth.tif"), "GTiff", {"TILED=YES"}));
  raster_ = new Raster(readRaster(at("smooth.tif")));
}

void Plot::TearDownTestSuite() {
  delete raster_;
  delete scratch_;
}

Outcome Plot::run(const std::string& script, const std::string& twist) {
  const std::string view = "40500200.35,3512450.75,200," + twist;
  return runCadhost(
      *scratch_, {"--size", "800x600", "--view", view, "--script", "-", at("smooth.tif")}, script);
}

QImage Plot::page(const std::string& file, int dpi) {
  if (extensionOf(file) == ".png") return QImage(QString::fromStdString(file));
  const std::string stem = at("page");
  const Outcome outcome = runProgram("/usr/bin/pdftoppm", {"-r", std::to_string(dpi), "-png",
                                                           "-singlefile", "-aa", "no", file, stem});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  return QImage(QString::fromStdString(stem + ".png"));
}

std::vector<std::string> Plot::readable(std::vector<std::string> files) {
  if (hasJudges()) return files;
  files.erase(std::remove_if(files.begin(), files.end(),
                             [](const auto& file) { return extensionOf(file) == ".pdf"; }),
              files.end());
  return files;
}

int Plot::pictures(const std::string& file) {
  return static_cast<int>(resolutionsOf(file).size());
}

int Plot::pictureResolution(const std::string& file) {
  const std::vector<int> all = resolutionsOf(file);
  return all.empty() ? 0 : all.front();
}

void Plot::expectGround(const QImage& page, const Placed& placed, int dpi) {
  const double dot = 25.4 / dpi;
  const View view = viewOf(placed, page, dot);
  const QRect dots = dotsInside(placed, dot);
  Differences differences;
  for (int y = dots.top(); y <= dots.bottom(); y += 3) {
    for (int x = dots.left(); x <= dots.right(); ++x) {
      double expected[3];
      if (!expectedPixel(*raster_, view, x, y, 1, expected)) {
        ADD_FAILURE() << "the test looks outside the image at " << x << "," << y;
        return;
      }
      differences.add(difference(page.pixel(x, y), expected));
    }
  }
  EXPECT_GT(differences.compared, 10000);
  differences.expectSmall();
  if (placed.turn == 0) expectGdalsWindow(page, view, dots, at("smooth.tif"));
}

std::string plotScript(const std::string& area, const std::string& scale, const std::string& offset,
                       const std::string& rotation, const std::string& device,
                       const std::string& file, int dpi) {
  return "PLOT\nYes\nModel\n" + device + "\nA4\nMillimeters\nLandscape\n" + rotation + "\n" + area +
         "\n" + scale + "\n" + offset + "\n" + std::to_string(dpi) + "\n" + file + "\nNo\nYes\n";
}

std::string sheetScript(const std::string& device, const std::string& file, int dpi) {
  return "PLOT\nYes\nLayout1\n" + device + "\nA3\nMillimeters\nLandscape\n0\nLayout\n1=1\n0,0\n" +
         std::to_string(dpi) + "\n" + file + "\nNo\nYes\n";
}

}  // namespace tarn::test
