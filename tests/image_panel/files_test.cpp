// The panel over the real module and real files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

#include "base/text.h"
#include "host/editor/namedrecords.h"
#include "rxdlinkr.h"
#include "tests/support/modulehost.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr double kLeft = 40500000;
constexpr double kTop = 3512600;

class PanelFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"adapter_autocad.arx", "image.arx"}) {
      const std::string path = std::string(TARN_BIN_DIR "/") + name;
      ASSERT_TRUE(acrxDynamicLinker->loadModule(toWide(path).c_str(), false)) << path;
    }
    host_.run("OpenImageList");
  }
  void TearDown() override {
    for (const char* name : {"image.arx", "adapter_autocad.arx"}) {
      acrxDynamicLinker->unloadModule(toWide(name).c_str());
    }
  }
  std::string click(const std::string& action, const std::vector<std::string>& inputs = {}) {
    host_.frontEnd.answers.clear();
    for (const std::string& input : inputs) host_.frontEnd.answers.emplace_back(input);
    return host_.run("UICLICK 1131 " + action);
  }
  /// A dull image, different in each channel, with black and white corners.
  static Raster dullRaster() {
    return makeRaster(200, 150, kLeft, kTop, 0.5, [](int x, int y, uint8_t* rgb) {
      const bool corner = (x < 20 && y < 20) || (x > 180 && y > 130);
      rgb[0] = static_cast<uint8_t>(90 + (x * 7 + y * 3) % 40);
      rgb[1] = static_cast<uint8_t>(60 + (x * x / 50 + y) % 70);
      rgb[2] = static_cast<uint8_t>(100 + (x + y) % 11);
      if (corner) std::fill_n(rgb, 3, x < 20 ? 0 : 255);
    });
  }
  std::string write(const std::string& name, const Raster& raster) {
    std::string path = joinPath(host_.folder, name);
    EXPECT_TRUE(writeRaster(raster, path)) << path;
    return path;
  }
  std::vector<std::string> stored() {
    return host::namedStrings(*host_.app, "ImagePath", "ImagePath");
  }
  /// The picture with image pixel (0, 0) at screen pixel (400, 225) and one screen pixel each.
  QImage picture() {
    host::ViewState view = host_.app->view();
    view.centerX = kLeft + 50;
    view.centerY = kTop - 37.5;
    view.height = 300;
    host_.app->setView(view);
    host_.app->regenerate();
    QImage image(1000, 600, QImage::Format_RGB32);
    QPainter painter(&image);
    host_.app->renderTo(painter, 1000, 600);
    return image;
  }

  ModuleHost host_;
};

using Tables = std::array<std::array<double, 256>, 3>;

bool isNothing(const uint8_t* p) {
  return (p[0] == 0 && p[1] == 0 && p[2] == 0) || (p[0] == 255 && p[1] == 255 && p[2] == 255);
}

/// What each value becomes, from all pixels that hold something: mode 1 the share of content at or
/// below it, mode 2 the place between mean - 2 and mean + 2 standard deviations.
Tables stretchedValues(const Raster& raster, int mode) {
  Tables tables{};
  for (size_t c = 0; c < 3; ++c) {
    std::array<double, 256> counts{};
    double n = 0, sum = 0, squares = 0;
    for (size_t i = 0; i < raster.rgb.size(); i += 3) {
      if (isNothing(&raster.rgb[i])) continue;
      const double v = raster.rgb[i + c];
      ++counts[raster.rgb[i + c]];
      ++n, sum += v, squares += v * v;
    }
    const double mean = sum / n;
    const double deviation = std::sqrt(squares / n - mean * mean);
    const double lowest =
        *std::find_if(counts.begin(), counts.end(), [](double k) { return k > 0; });
    double below = 0;
    for (size_t v = 0; v < 256; ++v) {
      below += counts[v];
      const double share = mode == 1 ? (below - lowest) / (n - lowest)
                                     : (static_cast<double>(v) - mean) / (4 * deviation) + 0.5;
      tables[c][v] = std::clamp(255 * share, 1.0, 254.0);
    }
  }
  return tables;
}

TEST_F(PanelFiles, StretchedPicturesAreWhatTheirDefinitionSays) {
  const Raster raster = dullRaster();
  const std::string path = write("dull.tif", raster);
  click("DRop", {path, ""});
  click("Click 119", {path});
  for (const auto& [command, mode] :
       {std::pair("1126", 1), std::pair("1127", 2), std::pair("32780", -1)}) {
    click("COmmand", {command});
    const QImage shown = picture();
    const Tables tables = stretchedValues(raster, mode);
    double worst = 0;
    int compared = 0;
    for (int y = 1; y < raster.height - 1; ++y) {
      for (int x = 1; x < raster.width - 1; ++x) {
        // The marker's line crosses the image.
        const uint8_t* from = raster.at(x, y);
        const QRgb to = shown.pixel(400 + x, 225 + y);
        if (isNothing(from) || to == qRgb(255, 255, 255)) continue;
        const int got[3] = {qRed(to), qGreen(to), qBlue(to)};
        for (size_t c = 0; c < 3; ++c) {
          const double wanted = mode < 0 ? from[c] : tables[c][from[c]];
          worst = std::max(worst, std::fabs(wanted - got[c]));
        }
        ++compared;
      }
    }
    EXPECT_GT(compared, 20000) << mode;
    EXPECT_LE(worst, 2) << mode;
  }
}

TEST_F(PanelFiles, TipsSayWhatAnImageIs) {
  const std::string path = write("a.tif", dullRaster());
  click("DRop", {path, ""});
  const std::string tip = click("Tip 119", {path});
  EXPECT_THAT(tip, HasSubstr("大小：200 × 150 像素"));
  EXPECT_THAT(tip, HasSubstr("像素大小：0.5 × 0.5"));
  EXPECT_THAT(tip, HasSubstr("波段：3"));
  EXPECT_THAT(tip, HasSubstr("金字塔："));
  // A world file that contradicts the image's own place.
  const std::string other = write("b.tif", dullRaster());
  ASSERT_TRUE(writeFileAtomically(joinPath(host_.folder, "b.tfw"), "0.5\n0\n0\n-0.5\n100\n200\n"));
  click("DRop", {other, ""});
  EXPECT_THAT(click("Tip 119", {other}), HasSubstr("注意："));
  EXPECT_THAT(click("Tip 119", {"影像列表"}), HasSubstr("影像：2，显示：2"));
  host_.run("SETVAR LOCALE ENU");
  const std::string english = click("Tip 119", {other});
  for (const char* line : {"Size: 200 × 150 pixels\n", "Pixel size: 0.5 × 0.5\n", "Bands: 3\n",
                           "Pyramid: ", "Coordinate system: ", "Note: "})
    EXPECT_THAT(english, HasSubstr(line));
  EXPECT_THAT(click("Tip 119", {"影像列表"}), HasSubstr("Images: 2, shown: 2"));
  click("Click 119", {path});
  click("Add 119", {other});
  EXPECT_THAT(click("Right 119", {other, ""}), HasSubstr("Hide the selected\n"));
  host_.run("SETVAR LOCALE CHS");
}

TEST_F(PanelFiles, WhatIsNoImageIsRefusedAndTheRestIsAdded) {
  const std::string good = write("好 🗺.tif", dullRaster());
  const std::string text = joinPath(host_.folder, "text.tif");
  ASSERT_TRUE(writeFileAtomically(text, "no image"));
  std::string deep = host_.folder;
  while (deep.size() < 300) deep = joinPath(deep, "一个很长的文件夹名字");
  ASSERT_TRUE(makeFolders(deep));
  const std::string longPath = joinPath(deep, "长.tif");
  ASSERT_TRUE(writeRaster(dullRaster(), longPath));
  const std::string printed = click(
      "DRop", {text, good, joinPath(host_.folder, "none.tif"), good, longPath, host_.folder, ""});
  EXPECT_THAT(printed, HasSubstr(text));
  EXPECT_THAT(printed, HasSubstr("none.tif"));
  EXPECT_THAT(printed, HasSubstr("\n该影像已经存在当前里列表中，不允许重复加载"));
  EXPECT_THAT(stored(), ElementsAre(good, longPath));
  EXPECT_TRUE(host_.ui.boxes.empty());

  // Gone while it is shown: it can still be hidden and removed.
  ASSERT_TRUE(removeAll(longPath));
  host_.app->regenerate();
  click("CHeck 119", {longPath});
  click("Click 119", {longPath});
  EXPECT_THAT(click("COmmand 1120"), HasSubstr(longPath + "的影像已被删除!"));
  EXPECT_THAT(stored(), ElementsAre(good));
}

TEST_F(PanelFiles, OneSearchMendsAllMissingImages) {
  const std::string was = joinPath(host_.folder, "was");
  const std::string is = joinPath(host_.folder, "elsewhere/now");
  ASSERT_TRUE(makeFolders(was));
  ASSERT_TRUE(makeFolders(is));
  Raster other = dullRaster();
  other.left += 500;
  std::vector<std::string> images;
  for (const char* name : {"was/一.tif", "was/two.tif", "was/three.tif"}) {
    images.push_back(write(name, images.empty() ? dullRaster() : other));
  }
  click("DRop", {images[0], images[1], images[2], ""});
  const std::string drawing = joinPath(host_.folder, "drawings/deep/er/still/plan.dxf");
  ASSERT_TRUE(makeFolders(folderOf(drawing)));
  host_.frontEnd.answers = {};
  host_.ui.files = {{drawing}};
  host_.run("SAVEAS");
  ASSERT_EQ(fileKind(drawing), FileKind::kRegular) << host_.printed();
  host_.run("CLOSE");
  for (const std::string& image : {images[0], images[1]}) {
    ASSERT_TRUE(replaceFile(image, joinPath(is, nameOf(image))));
  }
  // The same name but another size is another image.
  ASSERT_TRUE(removeAll(images[2]));
  ASSERT_TRUE(writeFileAtomically(joinPath(is, "three.tif"), "another"));
  host_.ui.files = {{drawing}};
  host_.run("OPEN");
  EXPECT_THAT(click("List 119"), Not(HasSubstr(".tif")));
  EXPECT_THAT(click("Tip 119", {"影像列表"}), HasSubstr("缺失：3"));

  host_.ui.files = {{host_.folder}};
  const std::string printed = click("Right 119", {"影像列表", "1143"});
  EXPECT_TRUE(host_.ui.requests.back().folder);
  EXPECT_THAT(printed, HasSubstr("\n已重新链接2幅影像。"));
  EXPECT_THAT(printed, HasSubstr("\n仍有1幅影像没有找到。"));
  EXPECT_THAT(stored(), ElementsAre(joinPath(is, "一.tif"), joinPath(is, "two.tif"), images[2]));
  EXPECT_THAT(click("List 119"), HasSubstr("  [x] " + joinPath(is, "一.tif") + "\n  [x] " +
                                           joinPath(is, "two.tif") + "\n"));
  EXPECT_NE(picture().pixel(500, 300), picture().pixel(5, 5)) << "it is drawn again";
}

}  // namespace
}  // namespace tarn::test
