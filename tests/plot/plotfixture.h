// Plots of the real program and their judge: GDAL's reading of the same ground.
#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QRectF>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr double kLeft = 40500000.35;
constexpr double kTop = 3512600.75;
constexpr double kPixel = 0.1;
constexpr double kMiddleX = kLeft + kWidth * kPixel / 2;
constexpr double kMiddleY = kTop - kHeight * kPixel / 2;
constexpr int kDpi = 120;

/// Ground on the paper as the test expects it: `x`, `y` stand at `mmX`, `mmY` from the paper's
/// upper left corner, a millimetre is `unit` drawing units, and all is turned by `turn` degrees.
struct Placed {
  double x, y;
  double mmX, mmY;
  double unit;
  double turn;
  QRectF inside;  ///< millimetres of paper that the image covers for certain
};

class Plot : public testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  static std::string at(const std::string& name) { return scratch_->at(name); }

  /// Runs the script in a drawing with the image; the view shows 200 units about its middle.
  static Outcome run(const std::string& script, const std::string& twist = "0");
  /// The page as pixels of a resolution: a PDF is drawn by poppler.
  static QImage page(const std::string& file, int dpi = kDpi);
  /// Those of the files that something here can read: no PDF without poppler.
  static std::vector<std::string> readable(std::vector<std::string> files);
  /// Pictures in a PDF, masks left out.
  static int pictures(const std::string& file);
  /// Dots per inch of the first of them.
  static int pictureResolution(const std::string& file);
  /// Each pixel against the full-resolution pixels under it; where nothing is turned, also against
  /// GDAL's own reduction of the window.
  static void expectGround(const QImage& page, const Placed& placed, int dpi = kDpi);

  static Scratch* scratch_;
  static Raster* raster_;
};

/// A4 lying, 5 mm of margin: 287 x 200 printable.
std::string plotScript(const std::string& area, const std::string& scale, const std::string& offset,
                       const std::string& rotation, const std::string& device,
                       const std::string& file, int dpi = kDpi);
/// Layout1 on A3 lying at 1=1, its sheet's origin 5 mm inside the lower left corner.
std::string sheetScript(const std::string& device, const std::string& file, int dpi = kDpi);

}  // namespace tarn::test
