#include "_image/displaysettings.h"
#include "_image/updateimagethread.h"
#include "commoncode/cadutil/dictrecord.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::test::RecordingWorldDraw;
using tarn::test::script;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Draw : public EntityTest {
 protected:
  void SetUp() override {
    EntityTest::SetUp();
    script().width = 20000;
    script().height = 10000;
    const double georef[6] = {0.1, 0, 0, -0.1, 40500000, 3513000};
    std::copy(std::begin(georef), std::end(georef), script().georef);
  }

  /// One screen pixel covers `reduction` image pixels; the centre lies inside the image.
  void look(double reduction, const std::string& twist = "0") {
    host_->run("TWIST " + twist);
    host_->run("ZOOM C 40501000,3512500 " + tarn::formatDouble(reduction * 0.1 * 600));
    script().calls.clear();
  }

  RecordingWorldDraw draw() {
    RecordingWorldDraw worldDraw;
    const OpenedImage image(record(), AcDb::kForRead);
    EXPECT_TRUE(image);
    EXPECT_TRUE(image->worldDraw(&worldDraw));
    return worldDraw;
  }
};

TEST_F(Draw, MarkerThenPixelsOfEachImageInTheOrderOfTheList) {
  ASSERT_TRUE(add(L"/data/z.tif"));
  ASSERT_TRUE(add(L"/data/a.tif"));
  look(1);
  const RecordingWorldDraw drawn = draw();
  EXPECT_THAT(drawn.recorded.order, ElementsAre("polyline 0", "image", "polyline 0", "image"));
  EXPECT_THAT(drawn.recorded.lines[0],
              ElementsAre(AcGePoint3d(40500100, 3512900, 0), AcGePoint3d(40501900, 3512900, 0),
                          AcGePoint3d(40500100, 3512100, 0), AcGePoint3d(40501900, 3512100, 0)));
  const tarn::test::DrawnImage& image = drawn.recorded.images[0];
  EXPECT_EQ(image.width, 1001U);
  EXPECT_EQ(image.height, 601U);
  EXPECT_NEAR(image.u.x, 100.1, 1e-6);
  EXPECT_NEAR(image.v.y, 60.1, 1e-6);
  EXPECT_NEAR(image.origin.x, 40501000 - 50, 1e-6);
  EXPECT_NEAR(image.origin.y + image.v.y, 3512500 + 30, 1e-6);
  EXPECT_EQ(image.pixels[0].red(), 10);
  EXPECT_EQ(image.pixels[0].green(), 20);
  EXPECT_EQ(image.pixels.back().blue(), 30);
  EXPECT_EQ(image.pixels.back().alpha(), 255);
}

TEST_F(Draw, ASmallImageKeepsItsMarkerInset) {
  script().width = 10;
  script().height = 5;
  ASSERT_TRUE(add(L"/data/a.tif"));
  look(1);
  EXPECT_THAT(
      draw().recorded.lines[0],
      ElementsAre(AcGePoint3d(40500100, 3512900, 0), AcGePoint3d(40499901, 3512900, 0),
                  AcGePoint3d(40500100, 3513099.5, 0), AcGePoint3d(40499901, 3513099.5, 0)));
}

TEST_F(Draw, RequestsFollowReductionClarityAndOffset) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  const struct {
    double reduction;
    int clarity;
    double offset;
    const char* call;
    double cell;
  } cases[] = {
      {10, 1, 1.0, "readRegion 5000 2000 1001 601 10 10", 10},
      {10, 4, 1.0, "readRegion 5000 2000 251 151 2.5 2.5", 40},
      {4, 1, 2.0, "readRegion 6000 2600 2001 1201 4 4", 4},
      {0.5, 1, 1.0, "readRegion 9750 4850 501 301 0.5 0.5", 1},
  };
  for (const auto& one : cases) {
    ASSERT_TRUE(tarn::cad::writeInt(tarn::image::clarityRatioPlace(), one.clarity));
    ASSERT_TRUE(tarn::cad::writeReal(tarn::image::offsetRatioPlace(), one.offset));
    look(one.reduction);
    const RecordingWorldDraw drawn = draw();
    EXPECT_THAT(script().calls, ElementsAre("setOutputMode 0", "announceWindow", one.call));
    EXPECT_NEAR(script().window[2], one.cell, 1e-7);
    EXPECT_NEAR(UpdateImageThread::request.resolution, one.reduction, 1e-7);
    EXPECT_EQ(UpdateImageThread::request.buffer, nullptr);
  }
}

TEST_F(Draw, OnlyReductionsAboveThreeHundredAreReadCoarsely) {
  script().width = 2000000;
  script().height = 1000000;
  script().georef[0] = 0.125;
  script().georef[3] = -0.125;
  ASSERT_TRUE(add(L"/data/a.tif"));
  const struct {
    double reduction;
    const char* call;
  } cases[] = {{299.5, "readRegion "}, {300.5, "readRegionOverview "}};
  for (const auto& one : cases) {
    host_->run("ZOOM C 40600000,3450500 " + tarn::formatDouble(one.reduction * 0.125 * 600));
    script().calls.clear();
    draw();
    ASSERT_EQ(script().calls.size(), 3U);
    EXPECT_THAT(script().calls[2], ::testing::StartsWith(one.call));
  }
}

TEST_F(Draw, NothingIsReadForWhatDoesNotShow) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  host_->run("ZOOM C 0,0 100");
  script().calls.clear();
  EXPECT_THAT(draw().recorded.order, ElementsAre("polyline 0"));
  look(1);
  record().setDisplayed(L"/data/a.tif", false);
  EXPECT_TRUE(draw().recorded.order.empty());
  record().setDisplayed(L"/data/a.tif", true);
  tarn::image::g_suppressPixels = true;
  EXPECT_THAT(draw().recorded.order, ElementsAre("polyline 0"));
  tarn::image::g_suppressPixels = false;
  EXPECT_THAT(script().calls, ::testing::IsEmpty());
}

TEST_F(Draw, AFailedReadIsTransparent) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  look(1);
  script().readsFail = true;
  const RecordingWorldDraw drawn = draw();
  ASSERT_EQ(drawn.recorded.images.size(), 1U);
  for (const AcGiPixelBGRA32& pixel : drawn.recorded.images[0].pixels) {
    ASSERT_EQ(pixel.alpha(), 0);
  }
}

TEST_F(Draw, WithoutARecordNothingIsDrawn) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  look(1);
  const AcDbObjectId id = record().residentImage();
  delete g_dataMap;
  g_dataMap = nullptr;
  CCadImage* image = nullptr;
  ASSERT_EQ(acdbOpenObject(image, id, AcDb::kForRead), Acad::eOk);
  RecordingWorldDraw worldDraw;
  EXPECT_TRUE(image->worldDraw(&worldDraw));
  image->close();
  EXPECT_TRUE(worldDraw.recorded.order.empty());
}

TEST_F(Draw, ATwistedViewCoversAllItsCorners) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  look(2, "30");
  const RecordingWorldDraw drawn = draw();
  ASSERT_EQ(drawn.recorded.images.size(), 1U);
  const tarn::test::DrawnImage& image = drawn.recorded.images[0];
  // 200 x 120 units turned by 30 degrees.
  const double halfWidth = 100 * std::cos(M_PI / 6) + 60 * std::sin(M_PI / 6);
  const double halfHeight = 100 * std::sin(M_PI / 6) + 60 * std::cos(M_PI / 6);
  EXPECT_LE(image.origin.x, 40501000 - halfWidth + 1e-6);
  EXPECT_GE(image.origin.x + image.u.x, 40501000 + halfWidth - 1e-6);
  EXPECT_LE(image.origin.y, 3512500 - halfHeight + 1e-6);
  EXPECT_GE(image.origin.y + image.v.y, 3512500 + halfHeight - 1e-6);
  EXPECT_FALSE(tarn::image::g_useScreenRectOld);
}

TEST_F(Draw, TheViewIsReadFromModelSpaceWhilePaperSpaceIsCurrent) {
  ASSERT_TRUE(add(L"/data/a.tif"));
  CCadImage image;
  int width = 0;
  int height = 0;
  image.getScreenPixelNumXY(width, height);
  EXPECT_EQ(width, 1000);
  EXPECT_EQ(height, 600);
  EXPECT_EQ(host_->printed().find("MSPACE"), std::string::npos);
  host_->run("SETVAR TILEMODE 0");
  host_->run("PSPACE");
  EXPECT_FALSE(image.IsInModelSpace());
  ASSERT_EQ(image.GetCVPort(), 1);
  tarn::image::g_refresh.suspendRefresh = true;
  image.getScreenPixelNumXY(width, height);
  EXPECT_EQ(image.GetCVPort(), 1);
  EXPECT_TRUE(tarn::image::g_refresh.suspendRefresh);
  image.SetCVPort(2);
  image.getScreenPixelNumXY(width, height);
  EXPECT_EQ(image.GetCVPort(), 2);
}

TEST_F(Draw, EmptyOperationsChangeNothing) {
  CCadImage image;
  int numbers[4] = {1, 2, 3, 4};
  double x = 5;
  double y = 6;
  EXPECT_TRUE(
      image.imageCoordinate2pixelCoordinate(numbers[0], numbers[1], numbers[2], numbers[3], x, y));
  image.getViewportImagePixelCoord(numbers[0], numbers[1], numbers[2], numbers[3]);
  image.GetImageFillBlankPixels(x, y);
  EXPECT_THAT(numbers, ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(x, 5);
  EXPECT_TRUE(CCadImage::PostToModelSpace(&image).isNull());
}

}  // namespace
