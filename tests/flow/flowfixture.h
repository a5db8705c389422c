// The real program's pictures of two rasters, and their judges.
#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {

constexpr int kWidth = 8000;
constexpr int kHeight = 6000;
constexpr double kLeft = 40500000.35;
constexpr double kTop = 3512600.75;
constexpr double kPixel = 0.1;

class Flow : public testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();

  /// What the program shows of the images in a view after the script's lines.
  static QImage picture(const std::vector<std::string>& images, const View& view,
                        const std::string& script);

  static Scratch* scratch_;
  static Raster* smooth_;
  /// Checks of 40, 400 and 2000 pixels in red, green and blue: one of them fits every reduction.
  static Raster* checks_;
};

struct Difference {
  long compared = 0;
  long beyond = 0;  // pixels that differ by more than 2 in a channel
  double largest = 0;
};

/// The picture against the raster's pixels, a rim of it left out.
Difference compare(const QImage& image, const Raster& raster, const View& view);

struct Edges {
  long found = 0;
  double worst = 0;
};

/// Visits the middle of every check side (a vertical or a horizontal one) that lies well inside.
Edges visitEdges(const QImage& image, const View& view, int check, int channel, bool vertical);

}  // namespace tarn::test
