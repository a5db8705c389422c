#include "_image/view/plotvalues.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarn::image {
namespace {

/// A4 lying with 5 mm of margin at 254 dots per inch: 287 x 200 mm, ten pixels a millimetre.
PlotPaper paper() {
  PlotPaper p;
  p.width = 297;
  p.height = 210;
  p.left = p.bottom = p.right = p.top = 5;
  p.dotsPerInch = 254;
  p.isCentered = true;
  return p;
}

void expectValues(const PlotValues& got, const PlotValues& wanted) {
  for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], wanted[i], 1e-9) << "value " << i;
}

TEST(PlotValues, AreThePartOfTheAreaWithinTheMargins) {
  PlotPaper p = paper();
  p.fits = true;
  expectValues(plotValuesOf(p, {1000, 2000, 287, 100, 0}), {1000, 2000, 287, 100, 10, 0});
  p.rotation = 1;
  expectValues(plotValuesOf(p, {1000, 2000, 287, 100, 0}), {1000, 2000, 287, 100, 2000 / 287.0, 0});
  p = paper();
  // A scale that is too large for the paper: what is centred loses on both sides.
  p.numerator = 10;
  expectValues(plotValuesOf(p, {0, 0, 100, 10, 0}), {0, 0, 28.7, 10, 100, 0});
  p.isCentered = false;
  p.originX = -30;
  expectValues(plotValuesOf(p, {0, 0, 100, 10, 0}), {-50 + 3 + 14.35, 0, 28.7, 10, 100, 0});
  p.originX = 5000;
  expectValues(plotValuesOf(p, {0, 0, 100, 10, 0}), {});
  p = paper();
  p.isInches = true;
  p.denominator = 2;
  EXPECT_NEAR(plotValuesOf(p, {0, 0, 1, 1, 0})[4], 127, 1e-9);
  EXPECT_FALSE(plottedView(plotValuesOf(p, {0, 0, 0, 1, 0})));
}

TEST(PlotValues, OfAViewportAreWhatItShowsWithinTheSheet) {
  const PlotValues sheet = {100, 100, 200, 200, 10, 0};
  PlotViewport viewport{50, 50, 40, 20, 40500000, 3500000, 100, 0};
  expectValues(plotValuesThrough(sheet, viewport), {40500000, 3500000, 200, 100, 2, 0});
  viewport.centerX = 0;  // half of it beyond the left margin
  expectValues(plotValuesThrough(sheet, viewport), {40500050, 3500000, 100, 100, 2, 0});
  viewport.twist = M_PI / 2;
  expectValues(plotValuesThrough(sheet, viewport), {40500000, 3499950, 100, 100, 2, M_PI / 2});
  viewport.centerX = -100;
  EXPECT_FALSE(plottedView(plotValuesThrough(sheet, viewport)));
}

TEST(PlotValues, GiveAViewWhosePixelsAreThoseOfThePlot) {
  const auto view = plottedView({40500000, 3500000, 50, 30, 4, 0});
  ASSERT_TRUE(view);
  EXPECT_EQ(view->pixelWidth, 201);
  EXPECT_EQ(view->viewRect.minX, 40499975);
  EXPECT_EQ(view->viewRect.maxY, 3500015);
  const ImageExtent image{100000, 100000, 0.05, -0.05, 40499000, 3501000, 0, 0};
  const auto request = planPixelRequest(*view, image);
  ASSERT_TRUE(request);
  EXPECT_NEAR(request->reductionX, 5, 1e-9);
  EXPECT_NEAR(request->originX, 40499975, 1e-6);
  EXPECT_EQ(request->coarserBy, 1);
  const auto twisted = plottedView({0, 0, 50, 30, 4, M_PI / 2});
  EXPECT_NEAR(twisted->viewRect.maxX, 15, 1e-9);
  EXPECT_NEAR(twisted->viewRect.maxY, 25, 1e-9);
}

TEST(PlotValues, AViewThatNeedsTooManyCellsSaysHowMuchCoarserItMustBe) {
  const ImageExtent image{100000, 1000, 1, -1, 0, 1000, 0, 0};
  for (const double perUnit : {0.5, 4.0}) {
    const auto view = plottedView({50000, 500, 100000, 1000, perUnit, 0});
    const auto request = planPixelRequest(*view, image);
    ASSERT_TRUE(request);
    ASSERT_LT(request->coarserBy, 1);
    const auto coarser = planPixelRequest(coarserView(*view, request->coarserBy), image);
    ASSERT_TRUE(coarser);
    EXPECT_EQ(coarser->coarserBy, 1);
    EXPECT_LE(coarser->columns, kMaxCells);
    EXPECT_GT(coarser->columns, kMaxCells - 10);
    EXPECT_NEAR(coarser->originX + coarser->spanU, 100000, 30);
  }
}

}  // namespace
}  // namespace tarn::image
