#include "_image/view/serverwindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace tarn::image;  // NOLINT(google-build-using-namespace)

/// x 0..4000, y 3000..0, a unit a pixel.
ImageExtent squareImage() {
  return {4000, 3000, 1, -1, 0, 3000, 4000, 0};
}

/// An untwisted view with its centre and its units a screen pixel.
ViewState viewAt(double x, double y, double unit, ScreenSize screen, int clarity = 1) {
  const ViewSize size{screen.width * unit, screen.height * unit, x, y};
  ViewState view;
  view.transform = groundToScreen(size, screen, 0);
  view.viewRect = {x - size.width / 2, y - size.height / 2, x + size.width / 2,
                   y + size.height / 2};
  view.fetchRect = view.viewRect;
  view.nominalRect = view.viewRect;
  view.pixelWidth = screen.width;
  view.pixelHeight = screen.height;
  view.clarity = clarity;
  return view;
}

TEST(ServerWindow, SizesAreScreenPixelsWithAMarginInTens) {
  const struct {
    const char* what;
    ViewState view;
    int columns, rows;
  } cases[] = {
      // 800 + 1 + 2 and 600 + 1 + 2, in tens.
      {"inside", viewAt(2000, 1500, 1, {800, 600}), 810, 610},
      {"inside, reduced", viewAt(2000, 1500, 2, {800, 600}), 810, 610},
      {"inside, enlarged", viewAt(2000, 1500, 0.25, {800, 600}), 810, 610},
      // 400 pixels to the image's right edge, no margin there.
      {"clipped at the right", viewAt(4000, 1500, 1, {800, 600}), 410, 610},
      {"clipped at the bottom", viewAt(2000, 0, 1, {800, 600}), 810, 310},
      // Left and top do not clip: 400 and 300, each with the margin.
      {"beyond the left and top", viewAt(0, 3000, 1, {800, 600}), 410, 310},
      // One pixel of the image is left beside the 790 + 1.
      {"as far as there is image", viewAt(3999 - 395, 1500, 1, {790, 600}), 800, 610},
      {"all of it", viewAt(2000, 1500, 10, {800, 600}), 410, 310},
      {"a quarter of the cells", viewAt(2000, 1500, 1, {800, 600}, 4), 210, 160},
  };
  for (const auto& one : cases) {
    const PixelRect rect = pixelRectOf(one.view.nominalRect, squareImage());
    const auto request = planServerRequest(one.view, squareImage(), rect);
    ASSERT_TRUE(request) << one.what;
    EXPECT_EQ(request->columns, one.columns) << one.what;
    EXPECT_EQ(request->rows, one.rows) << one.what;
  }
}

TEST(ServerWindow, CellsLieOnTheScreensPixelsAndCoverTheView) {
  const ScreenSize screen{797, 603};
  for (int i = 0; i < 400; ++i) {
    const double unit = std::pow(2.0, -5 + i % 9) * 1.01;
    const ViewState view =
        viewAt(37.3 * (i % 101) + 0.123, 29.7 * (i % 97) + 0.77, unit, screen, 1 + i % 3);
    const ImageExtent image = squareImage();
    const PixelRect rect = pixelRectOf(view.nominalRect, image);
    if (rect.width < 1 || rect.height < 1) continue;
    const auto request = planServerRequest(view, image, rect);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->columns % 10, 0);
    EXPECT_EQ(request->rows % 10, 0);
    const double cell = unit * view.clarity;
    EXPECT_NEAR(request->cellX, cell, 1e-9 * cell);
    const double steps = (request->originX - view.viewRect.minX) / cell;
    EXPECT_NEAR(steps, std::round(steps), 1e-4) << i;
    const double top = request->originY + request->spanV;
    const double slack = 1e-4 * cell;
    EXPECT_LE(request->originX, std::max(view.viewRect.minX, image.left) + slack) << i;
    EXPECT_GE(request->originX + request->spanU, std::min(view.viewRect.maxX, image.right) - slack);
    EXPECT_LE(request->originY, std::max(view.viewRect.minY, image.bottom) + slack) << i;
    EXPECT_GE(top, std::min(view.viewRect.maxY, image.top) - slack) << i;
  }
}

TEST(ServerWindow, LargePicturesStayWithinTheLargestBuffer) {
  ImageExtent image = squareImage();
  image.width = image.height = 200000;
  image.right = 200000;
  image.bottom = 3000 - 200000;
  const ViewState view = viewAt(50000, -50000, 1, {20000, 9000});
  const auto request = planServerRequest(view, image, pixelRectOf(view.nominalRect, image));
  ASSERT_TRUE(request);
  EXPECT_LE(request->columns, kMaxCells);
  EXPECT_LE(request->rows, kMaxCells);
  EXPECT_LT(request->coarserBy, 0.45);
  EXPECT_GE(request->spanU, 20000);
}

}  // namespace
