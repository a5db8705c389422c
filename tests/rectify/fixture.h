// The component as a plug-in, with an image made by plain GDAL.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "inc/callbackrectifyoperator.h"
#include "inc/iappmanager.h"
#include "inc/iimagedivision.h"
#include "inc/irectifydialog.h"
#include "tests/raster/testimages.h"
#include "tests/support/recordinginterface.h"

namespace tarn::rectify {

/// x, y to X, Y.
using GroundMap = std::function<void(double, double, double&, double&)>;

/// Red rises with the column and green with the row, over the whole image; blue is constant. So a
/// pixel's colours tell where it comes from.
raster::Picture ramp(int width, int height);

class RectifyTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  kel::Object<IRectifyDialog> open(const std::string& path,
                                   CallBackRectifyOperator* callback = nullptr);
  /// Writes a ramp with a world file of that corner and pixel size.
  std::string writeRamp(const std::string& name, int width, int height, double left, double top,
                        double pixel);

  raster::Scratch scratch_;
};

/// Sources and targets for a map, over the box of the drawn image, `side` by `side`.
struct Points {
  kel::PointList sources;
  kel::PointList targets;
};
Points pointsOver(IRectifyDialog& image, int side, const GroundMap& map);

/// Sets, accepts and expects that this is possible.
void rectify(IRectifyDialog& image, int method, const Points& points);

/// What the source shows, `columns` wide over all of the frame, each cell with the ground position
/// of its centre.
struct Shown {
  int columns = 0;
  int rows = 0;
  std::vector<unsigned char> cells;
  double left = 0, top = 0, stepX = 1, stepY = 1;

  const unsigned char* at(int c, int r) const {
    return &cells[(static_cast<size_t>(r) * columns + c) * 3];
  }
  bool isBlack(int c, int r) const { return !at(c, r)[0] && !at(c, r)[1] && !at(c, r)[2]; }
};
Shown show(IRectifyDialog& image, int columns, bool smooth = true);

/// Ground position to image pixel position, by whoever knows; false outside.
using PixelOfGround = std::function<bool(double, double, double&, double&)>;

struct Placed {
  /// Cells compared, and those that show nothing although they are well inside, or show something
  /// although they are well outside.
  int compared = 0;
  int holes = 0;
  int stray = 0;
  /// Largest distance between where a cell's colours come from and where they should, in image
  /// pixels.
  double error = 0;
};
/// Compares a ramp as it is shown with where its pixels belong.
Placed comparePlaces(const Shown& shown, int width, int height, const PixelOfGround& pixelOf);

}  // namespace tarn::rectify
