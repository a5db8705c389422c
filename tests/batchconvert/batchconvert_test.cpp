// The conversion component, with a user who fills in its form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/file.h"
#include "inc/callbackprogressbar.h"
#include "inc/iappmanager.h"
#include "inc/ibatchimageconversion.h"
#include "inc/kcore.h"
#include "tests/raster/testimages.h"
#include "tests/support/recordinginterface.h"

namespace {

using tarn::fileKind;
using tarn::FileKind;
using tarn::raster::Scratch;
using tarn::test::recorded;
using ::testing::Contains;
using ::testing::HasSubstr;

/// Counts what it is told.
class CountingProgress final : public CallBackProgressBar {
 public:
  void start(const char* text, int least, int most) override {
    label = text;
    minimum = least;
    position = least;
    maximum = most;
    ++starts;
  }
  void end() override { ++ends; }
  void setPosition(int next) override {
    EXPECT_GT(next, position) << "goes forward, and only when there is something to tell";
    position = next;
    ++moves;
  }

  std::string label;
  int minimum = 0, maximum = 0, position = 0, starts = 0, ends = 0, moves = 0;
};

class BatchConvert : public ::testing::Test {
 protected:
  void SetUp() override {
    fresh();
    tarn::test::RecordingInterface::registerSelf();
    kel::Object<IAppManager> manager("N", "test", 1);
    manager->loadPlugins("plugins", 0);
    kel::Core::setProgressBar(&progress_);
  }
  void TearDown() override { kel::Core::setProgressBar(nullptr); }

  /// The configuration lives in the test's folder.
  void fresh() {
    recorded() = {};
    recorded().folder = scratch_.folder();
  }
  static kel::Object<IBatchImageConversion> make() {
    return kel::Object<IBatchImageConversion>("N", "test", 2);
  }
  /// Answers the form: images, format and target folder.
  static void answer(const std::vector<std::string>& images, const char* format,
                     const std::string& folder) {
    recorded().answer = [=](kel::Form& form) {
      EXPECT_FALSE(form.check(form.fields).isEmpty()) << "nothing is named yet";
      for (const std::string& image : images) form.fields[0].values.emplace_back(image);
      form.fields[1].value = format;
      form.fields.back().value = folder;
      EXPECT_EQ(form.check(form.fields).str(), "");
      return true;
    };
  }

  Scratch scratch_;
  CountingProgress progress_;
};

TEST_F(BatchConvert, RunsTheFormAndReportsEveryFile) {
  tarn::raster::writePicture(scratch_ / "a.tif", tarn::raster::smooth(3000, 2500, 3));
  tarn::raster::writeText(scratch_ / "b.tif", "no image");
  answer({scratch_ / "a.tif", scratch_ / "b.tif"}, "2", scratch_ / "out");
  const auto converter = make();
  ASSERT_FALSE(converter.isNull());
  converter->run();
  EXPECT_EQ(converter->convertedCount(), 1);
  EXPECT_EQ(fileKind(scratch_ / "out/a.img"), FileKind::kRegular);
  const std::vector<std::string> expected = {
      "影像转换 2",
      "0 1 ",
      "0 2 ",
      "1 1 ",
      "1 4 " + (scratch_ / "b.tif") + ": is no TIFF, IMG or JPG image",
      "影像转换：已转换 1，失败 1 → " + (scratch_ / "out")};
  EXPECT_EQ(recorded().tasks, expected);
  EXPECT_EQ(progress_.starts, 1);
  EXPECT_EQ(progress_.ends, 1);
  EXPECT_EQ(progress_.label, "影像转换");
  EXPECT_GT(progress_.moves, 5);
  EXPECT_LE(progress_.position, progress_.maximum);
}

TEST_F(BatchConvert, IsStoppedByTheUserAndLeavesNothing) {
  tarn::raster::writePicture(scratch_ / "a.tif", tarn::raster::smooth(2000, 1500, 3));
  answer({scratch_ / "a.tif"}, "0", scratch_ / "out");
  recorded().cancel = true;
  const auto converter = make();
  converter->run();
  EXPECT_EQ(converter->convertedCount(), 0);
  EXPECT_THAT(recorded().tasks.back(), HasSubstr("已停止 1"));
  EXPECT_EQ(fileKind(scratch_ / "out/a.tif"), FileKind::kMissing);
  // A form that is cancelled, and a folder without images.
  fresh();
  converter->run();
  EXPECT_TRUE(recorded().tasks.empty());
  ASSERT_TRUE(tarn::makeFolders(scratch_ / "empty"));
  answer({scratch_ / "empty"}, "0", "");
  converter->run();
  EXPECT_THAT(recorded().messages, Contains("所选位置没有影像。"));
}

TEST_F(BatchConvert, ConvertsAndBuildsSingleImages) {
  tarn::raster::writePicture(scratch_ / "a.tif", tarn::raster::smooth(900, 700, 3));
  const auto converter = make();
  EXPECT_TRUE(converter->convertImage(scratch_ / "a.tif", scratch_ / "b.img"));
  EXPECT_EQ(tarn::raster::largestDifference(tarn::raster::readByGdal(scratch_ / "b.img"),
                                            tarn::raster::smooth(900, 700, 3)),
            0);
  EXPECT_TRUE(converter->buildPyramid(scratch_ / "a.tif"));
  EXPECT_EQ(fileKind(scratch_ / "a.tif.ovr"), FileKind::kRegular);
  EXPECT_FALSE(converter->convertImage(scratch_ / "none.tif", scratch_ / "c.img"));
  EXPECT_FALSE(converter->buildPyramid(scratch_ / "none.tif"));
  EXPECT_THAT(recorded().messages, Contains(HasSubstr("none.tif: cannot")).Times(2));
}

}  // namespace
