// Images, scripts, pictures and statistics of the program together.

#include <gtest/gtest.h>

#include "base/file.h"
#include "base/text.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

bool contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

TEST(ImagesOnTheCommandLine, ScriptCommandsPictureAndStatisticsWorkTogether) {
  const Scratch scratch("tarn_cli_");
  const Raster raster =
      makeRaster(700, 500, 1000, 2000, 0.5, [](int column, int row, uint8_t* rgb) {
        rgb[0] = static_cast<uint8_t>(20 + column / 4);
        rgb[1] = static_cast<uint8_t>(20 + row / 4);
        rgb[2] = 128;
      });
  ASSERT_TRUE(writeRaster(raster, scratch.at("a.tif")));
  ASSERT_TRUE(writeFileAtomically(scratch.at("s.scr"), "LINE\n1000,1750\n1350,2000\n\nREGEN\n"));
  const Outcome outcome =
      runCadhost(scratch, {"--stats", "--script", scratch.at("s.scr"), "--command", "ZOOM E",
                           "--command", "REGEN", "--size", "500x400", "--picture",
                           scratch.at("p.png"), scratch.at("a.tif")});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_EQ(QImage(QString::fromStdString(scratch.at("p.png"))).size(), QSize(500, 400));
  bool sawWindow = false;
  for (const std::string& line : split(outcome.output, '\n')) {
    if (line.empty() || line[0] != '{') continue;
    // Redraws, and the pyramid's progress.
    EXPECT_TRUE(contains(line, "\"ms\"") ||
                (contains(line, "\"progress\"") && contains(line, "\"reached\":1,")))
        << line;
    sawWindow = sawWindow || contains(line, "\"windows\":1");
  }
  EXPECT_TRUE(sawWindow) << outcome.output;
  EXPECT_EQ(runCadhost(scratch, {"--command", "NOSUCHCOMMAND"}).exitCode, 1);
  // The second start finds its profile in place.
  EXPECT_EQ(fileKind(scratch.at("profile/system/tarnconfig.db")), FileKind::kRegular);
  EXPECT_EQ(runCadhost(scratch, {"--command", "REGEN"}).exitCode, 0);
}

TEST(ImagesOnTheCommandLine, WhatCannotBeDoneYetIsRefusedInOneLine) {
  const Scratch scratch("tarn_cli_");
  for (const char* command : {"rectifyImage", "ImageConversion", "loadCloud"}) {
    const Outcome outcome = runCadhost(scratch, {"--command", command});
    EXPECT_FALSE(contains(outcome.output, "Unknown command")) << command;
    EXPECT_TRUE(contains(outcome.output, command)) << outcome.output;
  }
}

TEST(ImagesOnTheCommandLine, WhatANewUserMeetsIsAnswered) {
  const Scratch scratch("tarn_cli_");
  ASSERT_TRUE(writeFileAtomically(scratch.at("a.dwg"), "AC1015" + std::string(20, '\0')));
  EXPECT_TRUE(contains(runCadhost(scratch, {scratch.at("a.dwg")}).output, "save it as DXF"));
  const Outcome saved = runCadhost(
      scratch, {"--command", "LINE 0,0 9,9", "--command", "", "--save", scratch.at("b.dwg")});
  EXPECT_EQ(saved.exitCode, 1);
  EXPECT_TRUE(contains(saved.output, "choose a name that ends in .dxf")) << saved.output;
  EXPECT_EQ(fileKind(scratch.at("b.dwg")), FileKind::kMissing);
  // A drawing of a local grid and an image of the national one.
  const Raster raster =
      makeRaster(60, 50, 40500000, 3512600, 0.5, [](int, int, uint8_t* rgb) { rgb[0] = 90; });
  ASSERT_TRUE(writeRaster(raster, scratch.at("a.tif")));
  ASSERT_EQ(runCadhost(scratch, {"--command", "LINE 0,0 9,9", "--command", "", "--save",
                                 scratch.at("c.dxf")})
                .exitCode,
            0);
  EXPECT_TRUE(contains(
      runCadhost(scratch, {scratch.at("c.dxf"), scratch.at("a.tif"), "--command", "REGEN"}).output,
      "lie far from the rest of the drawing"));
}

TEST(ImagesOnTheCommandLine, AScriptConvertsImages) {
  const Scratch scratch("tarn_cli_");
  const Raster raster = makeRaster(300, 200, 500, 900, 0.5, [](int column, int row, uint8_t* rgb) {
    rgb[0] = static_cast<uint8_t>(column % 200 + 5);
    rgb[1] = static_cast<uint8_t>(row + 5);
    rgb[2] = 90;
  });
  ASSERT_TRUE(makeFolders(scratch.at("in")));
  ASSERT_TRUE(writeRaster(raster, scratch.at("in/正射.tif")));
  // The folder; then IMG, and Enter to what holds; a wrong answer is asked for again.
  const std::string script = "SETVAR LOCALE CHS\nImageConversion\n" + scratch.at("in") +
                             "\n\n9\n3\n" + std::string(7, '\n') + scratch.at("out") +
                             "\nSETVAR LOCALE ENU\nImageConversion\n" + scratch.at("in") + "\n\n" +
                             std::string(9, '\n');
  const Outcome outcome = runCadhost(scratch, {"--script", "-"}, script);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_TRUE(contains(outcome.output, "\"9\": a number from 1 to 4 is needed.")) << outcome.output;
  EXPECT_TRUE(contains(outcome.output, "影像转换：已转换 1 → " + scratch.at("out")));
  EXPECT_TRUE(contains(outcome.output, "正射.tif: skipped: current")) << "the answers were kept";
  EXPECT_TRUE(contains(outcome.output, "Image conversion: 1 current → " + scratch.at("out")));
  EXPECT_EQ(readRaster(scratch.at("out/正射.img")).rgb, raster.rgb) << outcome.output;
}

}  // namespace
}  // namespace tarn::test
