// Real images through the real module, adapter and image source.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <string>

#include "base/text.h"
#include "host/editor/namedrecords.h"
#include "inc/iconfigmanager.h"
#include "rxdlinkr.h"
#include "tests/support/modulehost.h"
#include "tests/support/program.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Images : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"adapter_autocad.arx", "image.arx"}) {
      const std::string path = std::string(TARN_BIN_DIR "/") + name;
      ASSERT_TRUE(acrxDynamicLinker->loadModule(tarn::toWide(path).c_str(), false)) << path;
    }
    host_.app->setBackground(0x102030);
  }
  void TearDown() override {
    for (const char* name : {"image.arx", "adapter_autocad.arx"}) {
      acrxDynamicLinker->unloadModule(tarn::toWide(name).c_str());
    }
  }

  std::string makeImage(const std::string& name, int width, int height) {
    const std::string path = tarn::joinPath(host_.folder, name);
    const std::vector<std::string> words = {path, std::to_string(width), std::to_string(height)};
    EXPECT_EQ(tarn::test::runProgram("tarnortho", words).exitCode, 0);
    return path;
  }
  std::string addImages(const std::vector<std::string>& paths) {
    host_.ui.files = {paths};
    return host_.run("addImage");
  }
  std::vector<std::string> stored() {
    return tarn::host::namedStrings(*host_.app, "ImagePath", "ImagePath");
  }
  /// Part of the picture that is not background.
  double inked() {
    QImage picture(1000, 600, QImage::Format_RGB32);
    QPainter painter(&picture);
    host_.app->renderTo(painter, 1000, 600);
    painter.end();
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixel(x, y) != qRgb(0x10, 0x20, 0x30)) ++count;
      }
    }
    return count / 600000.0;
  }

  tarn::test::ModuleHost host_;
};

TEST_F(Images, AreShownAndSurviveUnloadingAndLoading) {
  const std::string image = makeImage("正射 影像.tif", 900, 600);
  EXPECT_EQ(addImages({image}).find("fail"), std::string::npos);
  EXPECT_THAT(stored(), ElementsAre(image));
  EXPECT_EQ(tarn::fileKind(image + ".ovr"), tarn::FileKind::kRegular);
  ASSERT_TRUE(host_.app->zoomExtents());
  // 900 x 600 pixels of 0.1 in a view of 1000 x 600 with a margin of 1 per cent.
  const double shown = inked();
  EXPECT_GT(shown, 0.8);
  EXPECT_LT(shown, 0.9);

  ASSERT_TRUE(acrxDynamicLinker->unloadModule(L"image.arx"));
  host_.run("REGEN");
  EXPECT_DOUBLE_EQ(inked(), shown);
  const std::string module = TARN_BIN_DIR "/image.arx";
  ASSERT_TRUE(acrxDynamicLinker->loadModule(tarn::toWide(module).c_str(), false));
  host_.run("REGEN");
  EXPECT_DOUBLE_EQ(inked(), shown);
  EXPECT_THAT(addImages({image}), HasSubstr("不允许重复加载"));

  // Gone from the disk while shown: nothing worse than a transparent image.
  ASSERT_TRUE(tarn::writeFileAtomically(image, "cut short"));
  host_.run("REGEN");
  host_.run("ZOOM C 40500040,3512570 5");
}

TEST_F(Images, BadFilesAreNamedAndTheOthersAreAdded) {
  const std::string good = makeImage("good.tif", 300, 200);
  const std::string text = tarn::joinPath(host_.folder, "text.tif");
  const std::string empty = tarn::joinPath(host_.folder, "empty.tif");
  const std::string cut = makeImage("cut.tif", 300, 200);
  ASSERT_TRUE(tarn::writeFileAtomically(text, "this is no image"));
  ASSERT_TRUE(tarn::writeFileAtomically(empty, ""));
  const auto whole = tarn::readFile(cut, 1 << 20);
  ASSERT_TRUE(whole);
  ASSERT_TRUE(tarn::writeFileAtomically(cut, whole.value().substr(0, 60)));
  const std::string gone = tarn::joinPath(host_.folder, "gone.tif");
  const std::string printed = addImages({text, empty, cut, host_.folder, gone, good});
  for (const std::string& path : {text, empty, cut, host_.folder, gone}) {
    EXPECT_THAT(printed, HasSubstr(path + ": ")) << printed;
  }
  size_t failures = 0;
  for (size_t at = printed.find("imagedivision init fail!"); at != std::string::npos;
       at = printed.find("imagedivision init fail!", at + 1)) {
    ++failures;
  }
  EXPECT_EQ(failures, 5U);
  EXPECT_THAT(stored(), ElementsAre(good));
  ASSERT_TRUE(host_.app->zoomExtents());
  EXPECT_GT(inked(), 0.5);
}

TEST_F(Images, NoPyramidIsWrittenWhenTheConfigurationSaysSo) {
  kel::Object<IConfigManager>("N", "test", 1)->setValue("CreateImgx", "FALSE");
  const std::string image = makeImage("a.tif", 900, 600);
  addImages({image});
  EXPECT_THAT(stored(), ElementsAre(image));
  EXPECT_EQ(tarn::fileKind(image + ".ovr"), tarn::FileKind::kMissing);
  ASSERT_TRUE(host_.app->zoomExtents());
  EXPECT_GT(inked(), 0.8);
}

}  // namespace
