// Longer stories of drawings with images: without the module for a while, everything undone.
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QStandardPaths>

#include "base/file.h"
#include "base/path.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

size_t countOf(const std::string& text, const std::string& piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1))
    ++count;
  return count;
}

Raster grey(double left, uint8_t level) {
  return makeRaster(300, 200, left, 200, 1,
                    [level](int, int, uint8_t* rgb) { rgb[0] = rgb[1] = rgb[2] = level; });
}

class DrawingStories : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(writeRaster(grey(0, 90), image()));
    ASSERT_TRUE(writeRaster(grey(400, 160), scratch_.at("second.tif")));
    const Outcome made = runCadhost(scratch_, {"--save", scratch_.at("plan.dxf"), image()});
    ASSERT_EQ(made.exitCode, 0) << made.output;
  }
  std::string image() const { return scratch_.at("map.tif"); }

  /// The program without its modules: they are looked for beside it.
  Outcome runBare(std::vector<std::string> arguments) const {
    const QString whole = QStandardPaths::findExecutable("cadhost", {TARN_BIN_DIR});
    const std::string alone = scratch_.at("bare/" + nameOf(whole.toStdString()));
    EXPECT_TRUE(makeFolders(scratch_.at("bare")));
    QFile::copy(whole, QString::fromStdString(alone));
    arguments.insert(arguments.begin(), {"--headless", "--profile", scratch_.at("profile")});
    // Its libraries, and the toolkit's plug-ins where they stand beside programs.
    const char* const kPlaces[] = {"LD_LIBRARY_PATH", "QT_PLUGIN_PATH"};
    for (const char* place : kPlaces) qputenv(place, TARN_BIN_DIR);
    const Outcome outcome = runProgram(alone, arguments);
    for (const char* place : kPlaces) qunsetenv(place);
    return outcome;
  }

  /// Everything is there once: the entity, the path, and as many lines as said.
  void expectContent(const std::string& name, size_t lines) const {
    const auto bytes = readFile(scratch_.at(name), 1U << 28);
    ASSERT_TRUE(bytes) << bytes.message();
    EXPECT_EQ(countOf(bytes.value(), "\n  0\nCADIMAGE\n"), 1U) << name;
    EXPECT_EQ(countOf(bytes.value(), "\n" + image() + "\n"), 1U) << name;
    EXPECT_EQ(countOf(bytes.value(), "\n  0\nLINE\n"), lines) << name;
  }

  /// The level of grey at a place of a picture of the view 0,0 to 700,200 with a pixel a unit.
  int levelAt(const std::string& picture, int x, int y) const {
    const QImage seen(QString::fromStdString(scratch_.at(picture)));
    return seen.isNull() ? -1 : qRed(seen.pixel(x, y));
  }
  QImage pictureOf(const std::string& name) const {
    return QImage(QString::fromStdString(scratch_.at(name)));
  }
  std::vector<std::string> looking(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--size", "700x200", "--view", "350,100,200"});
    return arguments;
  }

  Scratch scratch_{"tarn_story_"};
};

TEST_F(DrawingStories, WithoutTheModuleNothingOfTheImagesIsLost) {
  const Outcome bare = runBare({"--command", "LINE 1,1 5,5", "--command", "", "--command",
                                "COPY ALL", "--command", "", "--command", "0,0 0,50", "--save",
                                scratch_.at("bare.dxf"), scratch_.at("plan.dxf")});
  EXPECT_NE(bare.output.find("CADIMAGE is kept but not drawn"), std::string::npos) << bare.output;
  expectContent("bare.dxf", 2);
  const Outcome back =
      runCadhost(scratch_, looking({"--picture", scratch_.at("back.png"), "--save",
                                    scratch_.at("back.dxf"), scratch_.at("bare.dxf")}));
  EXPECT_EQ(back.exitCode, 0) << back.output;
  expectContent("back.dxf", 2);
  EXPECT_NEAR(levelAt("back.png", 150, 100), 90, 2);
}

TEST_F(DrawingStories, TheModuleMayComeAfterTheDrawing) {
  const Outcome late =
      runBare(looking({"--command", "LINE 1,1 5,5", "--command", "", "--command", "APPLOAD",
                       "--command", TARN_BIN_DIR "/adapter_autocad.arx", "--command", "APPLOAD",
                       "--command", TARN_BIN_DIR "/image.arx", "--picture", scratch_.at("late.png"),
                       "--save", scratch_.at("late.dxf"), scratch_.at("plan.dxf")}));
  EXPECT_NE(late.output.find("image.arx loaded."), std::string::npos) << late.output;
  expectContent("late.dxf", 1);
  EXPECT_NEAR(levelAt("late.png", 150, 100), 90, 2) << late.output;
}

TEST_F(DrawingStories, EverythingUndoneAndRedoneIsSeenAsItWas) {
  const auto shot = [&](const char* name) { return "PNGOUT\n" + scratch_.at(name) + "\n"; };
  const std::string script =
      "REGEN\n" + shot("start.png") +
      "LAYER M lines C 1 lines\n\nLINE 10,10 290,190\n\nCIRCLE 350,100 40\n"
      "addImage\n" +
      scratch_.at("second.tif") +
      "\n\n"
      "MOVE L\n\n0,0 5,5\nPLINE 310,20 330,20 330,60\n\nCOPY L\n\n0,0 20,20\n\n"
      "TEXT 320,150 10 0 words\nROTATE L\n\n320,150 30\nERASE 350,140\n\nREGEN\n" +
      shot("last.png") + "UNDO 100\nREGEN\n" + shot("undone.png") + "MREDO All\nREGEN\n" +
      shot("redone.png");
  ASSERT_TRUE(writeFileAtomically(scratch_.at("story.scr"), script));
  const Outcome told =
      runCadhost(scratch_, looking({"--script", scratch_.at("story.scr"), "--save",
                                    scratch_.at("redone.dxf"), scratch_.at("plan.dxf")}));
  EXPECT_EQ(told.exitCode, 0) << told.output;
  const Outcome opened = runCadhost(
      scratch_, looking({"--picture", scratch_.at("reopened.png"), scratch_.at("redone.dxf")}));
  EXPECT_EQ(opened.exitCode, 0) << opened.output;
  EXPECT_NEAR(levelAt("last.png", 550, 100), 160, 2) << told.output;
  EXPECT_NE(pictureOf("start.png"), pictureOf("last.png"));
  EXPECT_EQ(pictureOf("start.png"), pictureOf("undone.png")) << told.output;
  EXPECT_EQ(pictureOf("last.png"), pictureOf("redone.png")) << told.output;
  EXPECT_EQ(pictureOf("last.png"), pictureOf("reopened.png")) << told.output;
}

}  // namespace
}  // namespace tarn::test
