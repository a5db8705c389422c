#include "_image/view/pixelwindow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace tarn::image;  // NOLINT(google-build-using-namespace)

ImageExtent imageAt(double left, double top, double pixel, int width, int height) {
  ImageExtent image;
  image.width = width;
  image.height = height;
  image.pixelWidth = pixel;
  image.pixelHeight = -pixel;
  image.left = left;
  image.top = top;
  image.right = left + width * pixel;
  image.bottom = top - height * pixel;
  return image;
}

ViewState viewAt(double x, double y, double height, ScreenSize screen, double degrees = 0,
                 double offset = 1.0, int clarity = 1) {
  const double twist = degrees * 3.141592653589793 / 180.0;
  const double width = height * screen.width / screen.height;
  const double c = std::cos(twist);
  const double s = std::sin(twist);
  const QPointF half(c * width / 2 + s * height / 2, -s * width / 2 + c * height / 2);
  const ViewSize size = viewSizeFromCorners(QPointF(x, y) - half, QPointF(x, y) + half);
  ViewState view;
  view.transform = groundToScreen(size, screen, twist);
  view.viewRect = wholeViewRect({x, y}, height, screen, twist);
  view.fetchRect = enlarged(view.viewRect, offset);
  const GroundRect nominal = twist != 0 ? view.viewRect : diagonalRect(view.transform, screen);
  view.nominalRect = enlarged(nominal, offset);
  view.pixelWidth = static_cast<int>(screen.width * offset);
  view.pixelHeight = static_cast<int>(screen.height * offset);
  view.twist = twist;
  view.clarity = clarity;
  return view;
}

TEST(PixelRect, TruncatesAndStaysInsideTheImage) {
  const ImageExtent image = imageAt(100, 200, 0.5, 1000, 500);  // x 100..600, y 200..-50
  const struct {
    GroundRect ground;
    int left, top, width, height;
    bool right, bottom;
  } cases[] = {
      {{100, -50, 600, 200}, 0, 0, 1000, 500, false, false},
      {{0, -1000, 1000, 1000}, 0, 0, 1000, 500, true, true},
      {{150.3, 100.2, 160.9, 150.9}, 100, 98, 21, 101, false, false},
      {{99.8, 150, 110, 200.4}, 0, 0, 20, 100, false, false},
      {{-300, 0, -200, 100}, 0, 200, -600, 200, false, false},  // left of it
      {{700, 0, 800, 100}, 1200, 200, -200, 200, true, false},  // right of it
      {{-1e300, -1e300, 1e300, 1e300}, 0, 0, 1000, 500, true, true},
  };
  for (const auto& one : cases) {
    const PixelRect rect = pixelRectOf(one.ground, image);
    EXPECT_EQ(rect.left, one.left);
    EXPECT_EQ(rect.top, one.top);
    EXPECT_EQ(rect.width, one.width);
    EXPECT_EQ(rect.height, one.height);
    EXPECT_EQ(rect.isClippedRight, one.right);
    EXPECT_EQ(rect.isClippedBottom, one.bottom);
  }
}

TEST(PixelRequest, CountsFollowClarityAndOffset) {
  // 1000 x 600 screen pixels over an image that reaches beyond them on all sides.
  const ImageExtent image = imageAt(0, 100000, 1.0, 100000, 100000);
  const struct {
    double height;
    double offset;
    int clarity;
    int columns, rows;
    double reduction, cell;
  } cases[] = {
      {600, 1.0, 1, 1001, 601, 1, 1},     {600, 1.0, 4, 251, 151, 1, 4},
      {6000, 1.0, 4, 251, 151, 10, 40},   {6000, 2.0, 1, 2001, 1201, 10, 10},
      {150, 1.0, 1, 251, 151, 0.25, 1},   {150, 1.0, 4, 63, 38, 0.25, 4},
      {6000, 9.0, 1, 4501, 5401, 10, 10},  // columns above 8192 are halved
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.height);
    const auto request = planPixelRequest(
        viewAt(50000, 50000, one.height, {1000, 600}, 0, one.offset, one.clarity), image);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->columns, one.columns);
    EXPECT_EQ(request->rows, one.rows);
    EXPECT_NEAR(request->reductionX, one.reduction, 1e-9);
    EXPECT_NEAR(request->reductionY, one.reduction, 1e-9);
    EXPECT_NEAR(request->cellY, one.cell, 1e-9);
    EXPECT_NEAR(request->spanV, request->rows * one.cell, 1e-6);
  }
}

/// What must hold for every request.
void expectSound(const ViewState& view, const ImageExtent& image, const PixelRequest& request) {
  const double a = image.pixelWidth;
  // The window that shows, in image pixels, and the cells over it.
  const double begin = std::max((view.fetchRect.minX - image.left) / a, 0.0);
  const double end = std::min((view.fetchRect.maxX - image.left) / a, double(image.width));
  const double top = std::max((image.top - view.fetchRect.maxY) / a, 0.0);
  const double bottom = std::min((image.top - view.fetchRect.minY) / a, double(image.height));
  const double slack = 1e-4 * std::max(1.0, request.reductionX);
  EXPECT_LE(request.windowX, begin + slack);
  EXPECT_GT(request.windowX, begin - std::max(1.0, request.reductionX) - slack);
  EXPECT_GE(request.windowX + request.columns * request.cellX, end - slack);
  EXPECT_LE(request.windowY, top + slack);
  EXPECT_GE(request.windowY + request.rows * request.cellY, bottom - slack);
  EXPECT_LE(request.columns, kMaxCells);
  // Placement is the same cells in drawing units.
  EXPECT_NEAR(request.originX, image.left + request.windowX * a, 1e-6);
  EXPECT_NEAR(request.originY + request.spanV, image.top - request.windowY * a, 1e-6);
  EXPECT_NEAR(request.spanU, request.columns * request.cellX * a, 1e-6);
}

TEST(PixelRequest, CellsOfAnUntwistedViewAreScreenPixels) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(0, 1);
  const ImageExtent image = imageAt(40500000.25, 3512900.75, 0.1, 20000, 12000);
  for (int i = 0; i < 300; ++i) {
    const double reduction = std::pow(400.0, unit(random)) * 1.001;
    const ScreenSize screen{800 + i % 5, 600 + i % 7};
    const double offset = i % 3 == 0 ? 2.0 : 1.0;
    const ViewState view =
        viewAt(40500000 + 2000 * unit(random), 3511700 + 1200 * unit(random),
               reduction * 0.1 * screen.height, screen, 0, offset, 1 + i % 2 * 3);
    const auto request = planPixelRequest(view, image);
    ASSERT_TRUE(request);
    expectSound(view, image, *request);
    const QPointF corner =
        view.transform.map(QPointF(request->originX, request->originY + request->spanV));
    const QPointF origin = view.transform.map(QPointF(view.viewRect.minX, view.viewRect.maxY));
    const QPointF fromOrigin = corner - origin;
    EXPECT_NEAR(fromOrigin.x(), std::round(fromOrigin.x()), 1e-4);
    EXPECT_NEAR(fromOrigin.y(), std::round(fromOrigin.y()), 1e-4);
    EXPECT_NEAR(request->cellX, request->reductionX * view.clarity, 1e-9);
  }
}

TEST(PixelRequest, EnlargedCellsAreWholeImagePixels) {
  const ImageExtent image = imageAt(40500000.25, 3512900.75, 0.1, 20000, 12000);
  for (const double reduction : {0.9, 0.3, 0.01, 0.0001}) {
    SCOPED_TRACE(reduction);
    const ViewState view = viewAt(40500123.456, 3512345.678, reduction * 0.1 * 1080, {1920, 1080});
    const auto request = planPixelRequest(view, image);
    ASSERT_TRUE(request);
    expectSound(view, image, *request);
    EXPECT_EQ(request->windowX, std::floor(request->windowX));
    EXPECT_EQ(request->cellX, 1.0);
    EXPECT_EQ(request->columns, request->rect.width + 1);
    EXPECT_LE(request->columns, 1920 * reduction + 3);
  }
}

TEST(PixelRequest, ATwistedViewIsCoveredWhole) {
  const ImageExtent image = imageAt(40500000, 3512900, 0.1, 20000, 12000);
  for (const double degrees : {30.0, -30.0, 45.0, 90.0, 180.0}) {
    SCOPED_TRACE(degrees);
    const ViewState view = viewAt(40501000, 3512300, 500, {1920, 1080}, degrees);
    const auto request = planPixelRequest(view, image);
    ASSERT_TRUE(request);
    expectSound(view, image, *request);
    EXPECT_NEAR(request->reductionX, 500.0 / 1080 / 0.1, 1e-9);
    EXPECT_NEAR(request->reductionY, request->reductionX, 1e-9);
  }
}

TEST(PixelRequest, NothingIsAskedWhereNothingShows) {
  const ImageExtent image = imageAt(0, 100, 1.0, 100, 100);
  const ViewState beside = viewAt(-500, 50, 100, {200, 100});
  EXPECT_FALSE(planPixelRequest(beside, image));
  EXPECT_FALSE(planPixelRequest(viewAt(50, 300, 100, {200, 100}), image));
  const ViewState over = viewAt(50, 50, 100, {200, 100});
  ASSERT_TRUE(planPixelRequest(over, image));
  for (const double bad :
       {0.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    ImageExtent broken = image;
    broken.pixelWidth = bad;
    EXPECT_FALSE(planPixelRequest(over, broken));
  }
  ImageExtent empty = image;
  empty.width = 0;
  EXPECT_FALSE(planPixelRequest(over, empty));
  ViewState broken = over;
  broken.transform = QTransform(0, 0, 0, 0, 0, 0);
  EXPECT_FALSE(planPixelRequest(broken, image));
}

}  // namespace
