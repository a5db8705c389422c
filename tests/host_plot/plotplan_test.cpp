#include "host/plot/plotplan.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/text.h"
#include "host/plot/paper.h"
#include "host/plot/sheetframe.h"

namespace tarn::host {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDot = 25.4 / 254;  // millimetres; 254 dots per inch are ten a millimetre

/// A4 standing with margins that differ.
PlotData a4() {
  PlotData settings;
  settings.width = 210;
  settings.height = 297;
  settings.left = 10;
  settings.bottom = 20;
  settings.right = 5;
  settings.top = 15;
  settings.type = AcDbPlotSettings::kWindow;
  return settings;
}

const PlotRegion kRegion{{40500500, 3512250}, 100, 50, 0};

struct Case {
  const char* name;
  int rotation;
  bool centered;
  const char* scale;
  double twist;
  // Where ground points (offsets from the region's centre) fall, in millimetres from the upper
  // left corner of the paper.
  double groundX, groundY, x, y;
};

TEST(PlotPlan, placesGroundOnThePaper) {
  // Printable: 195 wide from 10, 262 high from 20 (277 from the top is the lower edge).
  const Case cases[] = {
      {"1 to 1 at the lower left", 0, false, "1=1", 0, -50, -25, 10, 277},
      {"its other corner", 0, false, "1=1", 0, 50, 25, 110, 227},
      {"half size", 0, false, "1=2", 0, 50, 25, 60, 252},
      {"metres at 1:500", 0, false, "1000=500", 0, 50, 25, 210, 177},
      {"centred", 0, true, "1=1", 0, 0, 0, 107.5, 146},
      {"fitted", 0, true, "Fit", 0, -50, 0, 10, 146},
      {"turned by 90: right is up, up is left", 90, false, "1=1", 0, 50, -25, 205, 177},
      {"turned by 90, its origin", 90, false, "1=1", 0, -50, -25, 205, 277},
      {"turned by 180: the origin is the upper right", 180, false, "1=1", 0, -50, -25, 205, 15},
      {"turned by 270: the origin is the upper left", 270, false, "1=1", 0, -50, -25, 10, 15},
      {"turned by 270: right is down", 270, false, "1=1", 0, 50, -25, 10, 115},
      {"a twisted view turns the model", 0, true, "1=1", kPi / 2, 10, 0, 107.5, 136},
      {"twist and rotation add up", 90, true, "1=1", kPi / 2, 10, 0, 97.5, 146},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    PlotData settings = a4();
    settings.rotation = static_cast<AcDbPlotSettings::PlotRotation>(c.rotation / 90);
    settings.centered = c.centered;
    ASSERT_EQ(setScale(settings, c.scale), "");
    PlotRegion region = kRegion;
    region.twist = c.twist;
    const auto plan = planPlot(settings, region, 254);
    ASSERT_TRUE(plan) << plan.message();
    const PixelPoint at = pixelFromGround(
        plan.value().page, {region.center.x + c.groundX, region.center.y + c.groundY});
    EXPECT_NEAR(at.x * kDot, c.x, kDot * 0.51);
    EXPECT_NEAR(at.y * kDot, c.y, kDot * 0.51);
    EXPECT_EQ(plan.value().page.pixelWidth, 2100);
    EXPECT_EQ(plan.value().page.pixelHeight, 2970);
  }
}

TEST(PlotPlan, printsOnlyWithinTheMarginsAndOnWholePixels) {
  for (int rotation = 0; rotation < 4; ++rotation) {
    PlotData settings = a4();
    settings.rotation = static_cast<AcDbPlotSettings::PlotRotation>(rotation);
    settings.centered = true;
    setScale(settings, "3.7=1");
    const auto plan = planPlot(settings, kRegion, 300);
    ASSERT_TRUE(plan);
    const QRectF& clip = plan.value().clip;
    const double mm = 25.4 / 300;
    EXPECT_GE(clip.left() * mm, 10 - mm);
    EXPECT_LE(clip.right() * mm, 205 + mm);
    EXPECT_GE(clip.top() * mm, 15 - mm);
    EXPECT_LE(clip.bottom() * mm, 277 + mm);
    // The corner that is the region's upper left one stands on a whole pixel.
    const double x = rotation == 0 || rotation == 1 ? clip.left() : clip.right();
    const double y = rotation == 0 || rotation == 3 ? clip.top() : clip.bottom();
    EXPECT_NEAR(x, std::round(x), 1e-6) << rotation;
    EXPECT_NEAR(y, std::round(y), 1e-6) << rotation;
  }
}

TEST(PlotPlan, refusesWhatCannotBePlotted) {
  const auto refused = [](void (*change)(PlotData&, PlotRegion&), int dpi = 300) {
    PlotData settings = a4();
    PlotRegion region = kRegion;
    change(settings, region);
    return !planPlot(settings, region, dpi);
  };
  EXPECT_FALSE(refused([](PlotData&, PlotRegion&) {}));
  EXPECT_TRUE(refused([](PlotData& s, PlotRegion&) { s.left = 250; }));
  EXPECT_TRUE(refused([](PlotData&, PlotRegion& r) { r.width = 0; }));
  EXPECT_TRUE(refused([](PlotData&, PlotRegion& r) { r.height = std::nan(""); }));
  EXPECT_TRUE(refused([](PlotData& s, PlotRegion&) { s.originX = 5000; }));
  EXPECT_TRUE(refused([](PlotData& s, PlotRegion&) { s.width = 5000; }, 2400));
}

TEST(PlotPlan, showsTheModelThroughTheViewportsOfItsSheet) {
  PlotData settings = a4();
  settings.type = AcDbPlotSettings::kLayout;
  const auto plan = planPlot(settings, regionAround(printableBoxOf(settings), 0), 254);
  ASSERT_TRUE(plan);
  const PaperWindow window{{100, 100}, 80, 60, {40500123.456, 3512345.678}, 300, 0.5};
  const PlottedWindow plotted = plottedWindow(plan.value(), window);
  const PixelPoint center = pixelFromGround(plotted.view, window.viewCenter);
  EXPECT_NEAR(center.x * kDot, 110, kDot * 0.51);
  EXPECT_NEAR(center.y * kDot, 177, kDot * 0.51);
  EXPECT_NEAR(plotted.view.unitsPerPixel(), 5 * kDot, 1e-9);
  EXPECT_NEAR(plotted.clip.width() * kDot, 80, 1e-6);
  const PaperWindow outside{{-100, 100}, 80, 60, {0, 0}, 300, 0};
  EXPECT_TRUE(plottedWindow(plan.value(), outside).clip.isEmpty());
}

TEST(PlotPaper, isReadAsItIsWritten) {
  PlotData s = a4();
  EXPECT_EQ(setPaper(s, "a1"), "");
  EXPECT_EQ(s.width, 594);
  setLandscape(s, true);
  EXPECT_EQ(s.width, 841);
  EXPECT_EQ(setPaper(s, "A4"), "");
  EXPECT_EQ(s.width, 297);
  EXPECT_EQ(setPaper(s, "914x 1500.5"), "");
  EXPECT_EQ(s.height, 1500.5);
  for (const char* text : {"", "A7", "5x10", "x", "100", "100x6000", "nanxnan", "1x2x3"}) {
    EXPECT_NE(setPaper(s, text), "") << text;
  }
  for (const char* text : {"", "0=1", "1=0", "1", "=1", "-1=5", "1=x", "inf=1"}) {
    EXPECT_NE(setScale(s, text), "") << text;
  }
  for (const char* text : {"", "1", "1,2,3", "a,b"}) EXPECT_NE(setOffset(s, text), "") << text;
  EXPECT_EQ(s.height, 1500.5);
  EXPECT_EQ(setOffset(s, "-10.5,3"), "");
  EXPECT_EQ(s.originX, -10.5);
  EXPECT_FALSE(s.centered);
}

}  // namespace
}  // namespace tarn::host
