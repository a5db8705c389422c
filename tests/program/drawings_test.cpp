// Drawings with images: saved, opened, moved.
#include <gtest/gtest.h>

#include "base/file.h"
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

std::string bytesOf(const std::string& path) {
  auto bytes = readFile(path, 1U << 28);
  return bytes ? bytes.take() : std::string();
}

TEST(Drawings, imagesComeBackAndNothingIsDoubled) {
  const Scratch scratch("tarn_drawing_");
  const std::string image = scratch.at("map.tif");
  ASSERT_TRUE(writeRaster(makeRaster(300, 200, 0, 200, 1,
                                     [](int, int, uint8_t* rgb) { rgb[0] = rgb[1] = rgb[2] = 90; }),
                          image));
  const std::string first = scratch.at("plan.dxf");
  const Outcome made = runCadhost(scratch, {"--save", first, image});
  ASSERT_EQ(made.exitCode, 0) << made.output;
  EXPECT_EQ(countOf(bytesOf(first), "\n  0\nCADIMAGE\n"), 1U);

  // Opened, looked at and saved under another name.
  const std::string second = scratch.at("again.dxf");
  const Outcome again =
      runCadhost(scratch, {"--picture", scratch.at("p.png"), "--save", second, first});
  ASSERT_EQ(again.exitCode, 0) << again.output;
  EXPECT_EQ(again.output.find("kept but not drawn"), std::string::npos) << again.output;
  EXPECT_EQ(countOf(bytesOf(second), "\n  0\nCADIMAGE\n"), 1U);
  EXPECT_EQ(countOf(bytesOf(second), image), 1U);
  const QImage picture(QString::fromStdString(scratch.at("p.png")));
  const QRgb middle = picture.pixel(picture.width() / 2, picture.height() / 2);
  EXPECT_NEAR(qRed(middle), 90, 2) << "the image is not seen";
}

TEST(Drawings, imagesMovedTogetherWithTheirDrawingAreFound) {
  const Scratch scratch("tarn_drawing_");
  ASSERT_TRUE(makeFolders(scratch.at("old/plans")) && makeFolders(scratch.at("old/images")));
  const std::string image = scratch.at("old/images/map.tif");
  ASSERT_TRUE(writeRaster(makeRaster(30, 20, 0, 20, 1, [](int, int, uint8_t*) {}), image));
  const Outcome made = runCadhost(scratch, {"--save", scratch.at("old/plans/plan.dxf"), image});
  ASSERT_EQ(made.exitCode, 0) << made.output;
  ASSERT_TRUE(replaceFile(scratch.at("old"), scratch.at("new")));
  const Outcome opened =
      runCadhost(scratch, {"--command", "_List", scratch.at("new/plans/plan.dxf")});
  EXPECT_EQ(countOf(opened.output, scratch.at("new/images/map.tif")), 1U) << opened.output;
}

TEST(Drawings, aDrawingThatCannotBeOpenedIsNamed) {
  const Scratch scratch("tarn_drawing_");
  ASSERT_TRUE(writeFileAtomically(scratch.at("bad.dxf"), "0\nSECTION\n2\nENTITIES\nx\n"));
  const Outcome outcome = runCadhost(scratch, {"--command", "REGEN", scratch.at("bad.dxf")});
  EXPECT_EQ(outcome.exitCode, 1) << outcome.output;
  EXPECT_NE(outcome.output.find("bad.dxf: line 5"), std::string::npos) << outcome.output;
}

}  // namespace
}  // namespace tarn::test
