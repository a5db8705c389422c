// The view that a double click shows.
#include <cmath>

#include "_image/imagezoom.h"
#include "dbsymtb.h"
#include "host/graphics/viewstate.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::image::ZoomWindow;
using tarn::image::zoomWindow;

class Zoom : public EntityTest {
 protected:
  void SetUp() override {
    EntityTest::SetUp();
    add(L"/im/a.tif");  // from (100, 200), 500 x 250 units
  }
  std::string doubleClick() {
    host_->run("OpenImageList");
    return host_->run("UICLICK 1131 Double 119 /im/a.tif");
  }
};

TEST_F(Zoom, ShowsTheImageWithItsMargin) {
  EXPECT_NE(doubleClick().find("Command: regen"), std::string::npos);
  const tarn::host::ViewState view = host_->app->view();
  EXPECT_NEAR(view.centerX, 350, 1e-9);
  EXPECT_NEAR(view.centerY, 75, 1e-9);
  // 1000 x 600 pixels: the width decides.
  EXPECT_NEAR(view.height, 550 * 0.6, 1e-9);
  const std::string before = host_->run("UICLICK 1131 Double 119 影像列表");
  EXPECT_EQ(before.find("regen"), std::string::npos);
}

TEST_F(Zoom, ShowsAllOfItInATurnedView) {
  for (const double degrees : {30.0, 90.0, 135.0, -20.0}) {
    tarn::host::ViewState view = host_->app->view();
    view.twist = degrees * 3.14159265358979 / 180;
    host_->app->setView(view);
    doubleClick();
    view = host_->app->view();
    double least = 1e9;
    for (const double x : {100.0, 600.0}) {
      for (const double y : {-50.0, 200.0}) {
        const tarn::host::PixelPoint at = tarn::host::pixelFromGround(view, {x, y});
        least = std::min({least, at.x, at.y, 1000 - at.x, 600 - at.y});
      }
    }
    EXPECT_GT(least, 10) << degrees;
    EXPECT_LT(least, 100) << degrees;
  }
}

TEST_F(Zoom, TheRecordSaysWhatTheVariablesSay) {
  AcDbViewTableRecord view;
  tarn::image::fillViewRecord(view, {0, 10, 40, 30});
  EXPECT_EQ(view.centerPoint().x, 20);
  EXPECT_EQ(view.centerPoint().y, 20);
  EXPECT_EQ(view.width(), 40);
  EXPECT_EQ(view.height(), 20);
  EXPECT_EQ(view.lensLength(), 50);
  EXPECT_EQ(view.viewDirection().z, 1);
  EXPECT_EQ(view.viewTwist(), 0);
  EXPECT_TRUE(view.frontClipAtEye());
  EXPECT_FALSE(view.perspectiveEnabled() || view.frontClipEnabled() || view.backClipEnabled());
  EXPECT_FALSE(view.isPaperspaceView());
  host_->run("SETVAR TILEMODE 0");
  tarn::image::fillViewRecord(view, {0, 10, 40, 30});
  EXPECT_TRUE(view.isPaperspaceView());
  doubleClick();
  EXPECT_NEAR(host_->app->view().centerX, 350, 1e-9) << "of the sheet";
}

}  // namespace
