// How sources are opened: order of calls, texts, settings.
#include "inc/iconfigmanager.h"
#include "tests/image_entity/fixture.h"

namespace {

using tarn::test::script;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Source : public EntityTest {
 protected:
  bool open(const std::wstring& path) {
    auto division = makeDivision();
    script().calls.clear();
    host_->printed();
    return CCadImage().GetimageDivision(division, path);
  }
  static void setCreateImgx(const char* value) {
    kel::Object<IConfigManager> config("N", "test", 1);
    ASSERT_TRUE(config->setValue("CreateImgx", value));
  }
};

TEST_F(Source, OpensTwiceAndBuildsAMissingPyramidBetween) {
  EXPECT_TRUE(open(L"/data/影像/a.tif"));
  EXPECT_THAT(script().calls,
              ElementsAre("init /data/影像/a.tif /data/影像 0", "hasPyramid /data/影像", "close",
                          "init /data/影像/a.tif /data/影像 0"));
  script().hasPyramid = false;
  EXPECT_TRUE(open(L"C:\\data\\a.tif"));
  EXPECT_THAT(script().calls, ElementsAre("init C:\\data\\a.tif C:\\data 0", "hasPyramid C:\\data",
                                          "buildPyramid C:\\data 0 3 256 256 1 100", "close",
                                          "init C:\\data\\a.tif C:\\data 0"));
  EXPECT_EQ(host_->printed(), "");
}

TEST_F(Source, TheConfigurationSwitchesPyramidsOff) {
  script().hasPyramid = false;
  for (const char* value : {"false", "FALSE", "False"}) {
    setCreateImgx(value);
    EXPECT_TRUE(open(L"/data/a.tif"));
    EXPECT_THAT(script().calls, ElementsAre("init /data/a.tif /data 0", "setNoPyramid 1", "close",
                                            "init /data/a.tif /data 0"))
        << value;
  }
  for (const char* value : {"true", "", "0", "falsch"}) {
    setCreateImgx(value);
    EXPECT_TRUE(open(L"/data/a.tif"));
    EXPECT_THAT(script().calls, ::testing::Contains(HasSubstr("buildPyramid"))) << value;
  }
}

TEST_F(Source, FailuresPrintTheirTextAndClose) {
  script().goodInits = 0;
  EXPECT_FALSE(open(L"/data/a.tif"));
  EXPECT_EQ(host_->printed(), "\nimagedivision init fail!");
  EXPECT_THAT(script().calls, ElementsAre("init /data/a.tif /data 0", "close"));

  script().goodInits = 1;
  EXPECT_FALSE(open(L"/data/a.tif"));
  EXPECT_EQ(host_->printed(), "\nimagedivision init fail!");
  EXPECT_EQ(script().calls.back(), "close");

  script().goodInits = 0;
  EXPECT_FALSE(open(L"a.tif"));
  EXPECT_EQ(host_->printed(), "\n金字塔路径为空！\nimagedivision init fail!");
  EXPECT_FALSE(open(L""));
  EXPECT_EQ(host_->printed(), "\n图片路径为空！\n金字塔路径为空！\nimagedivision init fail!");

  script().goodInits = 9;
  EXPECT_FALSE(open(L""));
  EXPECT_EQ(host_->printed(), "\n图片路径为空！\n金字塔路径为空！\nstrFile为空！");
  EXPECT_EQ(script().calls.back(), "close");

  CCadImage::Division none;
  EXPECT_FALSE(CCadImage().GetimageDivision(none, L"/data/a.tif"));
  EXPECT_EQ(host_->printed(), "imagedivision invalid!");
}

TEST_F(Source, APathIsLoadedOnceAnEntity) {
  CCadImage image;
  auto division = makeDivision();
  image.SetImageInfo(L"/data/a.tif", division);
  auto again = makeDivision();
  EXPECT_FALSE(image.GetimageDivision(again, L"/data/a.tif"));
  EXPECT_EQ(host_->printed(), "\n/data/a.tif该影像文件已被加载！");
  EXPECT_TRUE(image.GetimageDivision(again, L"/data/A.tif"));
}

TEST_F(Source, ExtentsComeFromTheNumbersOrTheImagesOwnSystem) {
  const CCadImage image;
  auto division = makeDivision();
  int width = 0;
  int height = 0;
  double a = 0, e = 0, y0 = 0, x0 = 0, right = 0, bottom = 0;
  ASSERT_TRUE(image.GetImageData(division, nullptr, width, height, a, e, y0, x0, right, bottom));
  EXPECT_THAT((std::vector<double>{a, e, x0, y0, right, bottom}),
              ElementsAre(0.5, -0.5, 100, 200, 600, -50));
  const double given[6] = {2, 9, 9, -1, 10, 20};
  ASSERT_TRUE(image.GetImageData(division, given, width, height, a, e, y0, x0, right, bottom));
  EXPECT_THAT((std::vector<double>{a, e, x0, y0, right, bottom}),
              ElementsAre(2, -1, 10, 20, 2010, -480));
  script().coordinateSystem = 0;
  ASSERT_TRUE(image.GetImageData(division, given, width, height, a, e, y0, x0, right, bottom));
  EXPECT_EQ(width, 10);
  EXPECT_EQ(height, 20);
  EXPECT_THAT((std::vector<double>{a, e, x0, y0, right, bottom}),
              ElementsAre(3, -4, 1, 2, 31, -78));
  const CCadImage::Division none;
  EXPECT_FALSE(image.GetImageData(none));
  EXPECT_FALSE(image.GetImageData(none, nullptr, width, height, a, e, y0, x0, right, bottom));

  double upperLeft[2];
  double lowerRight[2];
  image.GetImageCenterPt(division, upperLeft, lowerRight);
  EXPECT_THAT(upperLeft, ElementsAre(100, 200));
  EXPECT_THAT(lowerRight, ElementsAre(600, -50));
}

TEST_F(Source, AMergedChunkIsPaintedRed) {
  unsigned char dest[4 * 4 * 3] = {};
  const unsigned char chunk[6] = {1, 2, 3, 4, 5, 6};
  CCadImage().MergeImageChunkData(dest, 4, 0, chunk, 1, 2, 2, 1);
  unsigned char expected[4 * 4 * 3] = {};
  expected[27] = expected[30] = 0xFF;
  EXPECT_THAT(dest, ::testing::ElementsAreArray(expected));
}

}  // namespace
