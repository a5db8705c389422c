// What covers what, before the eyes of another program that reads and writes such drawings.
#include <gtest/gtest.h>

#include <QImage>

#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

Outcome judge(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), TARN_SOURCE_DIR "/tests/host_entities/entity_judge.py");
  return runProgram("/usr/bin/python3", arguments);
}

/// All four areas of the drawing lie over one another here.
constexpr const char* kMiddle = "5,5,30";

TEST(DrawOrder, isReadDrawnChangedAndWritten) {
  struct Case {
    const char* how;     ///< the drawing is stacked
    const char* script;  ///< areas are picked at their left rims
    const char* order;   ///< colours from the bottom to the top
  };
  constexpr unsigned kSeen[] = {0, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF};
  const Case cases[] = {
      {"plain", "REGEN\n", "1 2 3 4"},
      {"turned", "REGEN\n", "4 3 2 1"},
      {"plain", "SENDTOBACK\n0,0.2\n\n", "4 1 2 3"},
      {"plain", "DRAWORDER\nW\n-2.5,-1\n11,11\n\nF\n", "3 4 1 2"},
      {"turned", "DRAWORDER\n0,0.2\n\nB\n", "1 4 3 2"},
      {"turned", "BRINGTOFRONT\n-3.5,5\n\n", "3 2 1 4"},
      {"turned", "DRAWORDER\nL\n\nA\nW\n-2.5,-1\n11,11\n\n", "3 2 1 4"},
      {"plain", "DRAWORDER\nL\n\nU\nW\n-2.5,-1\n11,11\n\n", "4 1 2 3"},
      {"plain", "DRAWORDER\nL\n\nB\nU\n", "1 2 3 4"},
      {"turned", "DRAWORDER\nL\n\nF\nU\nREDO\n", "3 2 1 4"},
      // An area that is taken away and brought back lies where it lay.
      {"plain", "ERASE\n-1.5,5\n\nOOPS\n", "1 2 3 4"},
      {"turned", "ERASE\nL\n\nREGEN\nU\n", "4 3 2 1"},
  };
  const Scratch scratch("tarn_order_");
  const Outcome made = judge({"stacked", scratch.at("plain.dxf"), scratch.at("turned.dxf")});
  if (made.exitCode == 77) GTEST_SKIP() << "python3-ezdxf is not installed";
  ASSERT_EQ(made.exitCode, 0) << made.output;
  std::vector<std::string> question = {"order"};
  std::string answer;
  for (const Case& c : cases) {
    const std::string out = scratch.at("out" + std::to_string(question.size()) + ".dxf");
    const Outcome outcome =
        runCadhost(scratch,
                   {scratch.at(std::string(c.how) + ".dxf"), "--view", kMiddle, "--script", "-",
                    "--picture", scratch.at("seen.png"), "--save", out},
                   c.script);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
    const unsigned top = static_cast<unsigned>(std::string(c.order).back() - '0');
    const QImage seen(QString::fromStdString(scratch.at("seen.png")));
    EXPECT_EQ(seen.pixel(seen.width() / 2, seen.height() / 2) & 0xFFFFFF, kSeen[top])
        << c.how << ' ' << c.script << outcome.output;
    question.push_back(out);
    answer += std::string(c.order) + "\n";
  }
  EXPECT_EQ(judge(question).output, answer);
}

/// An image comes to lie over the parcels that were there, is sent under them, and lies there when
/// the drawing is opened again.
TEST(DrawOrder, imagesLieUnderAndOverParcels) {
  const Scratch scratch("tarn_order_");
  const Outcome made = judge({"stacked", scratch.at("plain.dxf"), scratch.at("turned.dxf")});
  if (made.exitCode == 77) GTEST_SKIP() << "python3-ezdxf is not installed";
  const Raster raster = makeRaster(60, 60, 2, 8, 0.1, [](int, int, uint8_t* rgb) {
    rgb[0] = 10;
    rgb[1] = 20;
    rgb[2] = 30;
  });
  ASSERT_TRUE(writeRaster(raster, scratch.at("a.tif")));
  const std::string under = scratch.at("under.dxf");
  const auto seen = [&](std::vector<std::string> arguments, const char* script) {
    const std::string picture = scratch.at("seen.png");
    const std::vector<std::string> how = {"--view", kMiddle, "--script", "-", "--picture", picture};
    arguments.insert(arguments.end(), how.begin(), how.end());
    const Outcome outcome = runCadhost(scratch, arguments, script);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    const QImage image(QString::fromStdString(picture));
    return image.pixel(image.width() / 2, image.height() / 2) & 0xFFFFFF;
  };
  EXPECT_EQ(seen({scratch.at("plain.dxf"), scratch.at("a.tif")}, "REGEN\n"), 0x0A141Eu);
  EXPECT_EQ(
      seen({scratch.at("plain.dxf"), scratch.at("a.tif"), "--save", under}, "SENDTOBACK\n2,5\n\n"),
      0x00FFFFu);
  EXPECT_EQ(seen({under}, "REGEN\n"), 0x00FFFFu);
  EXPECT_EQ(seen({under}, "BRINGTOFRONT\nW\n1,1\n9,9\n\n"), 0x0A141Eu);
}

}  // namespace
}  // namespace tarn::test
