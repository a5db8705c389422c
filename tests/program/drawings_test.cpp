// Drawings with images: saved, opened, moved.
#include <gtest/gtest.h>

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

std::string bytesOf(const std::string& path) {
  auto bytes = readFile(path, 1U << 28);
  return bytes ? bytes.take() : std::string();
}

Raster greyRaster() {
  return makeRaster(300, 200, 0, 200, 1,
                    [](int, int, uint8_t* rgb) { rgb[0] = rgb[1] = rgb[2] = 90; });
}

TEST(Drawings, imagesComeBackAndNothingIsDoubled) {
  const Scratch scratch("tarn_drawing_");
  const std::string image = scratch.at("map.tif");
  ASSERT_TRUE(writeRaster(greyRaster(), image));
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

/// True when the image, which is all of one grey, is in the middle of the drawing's first picture.
bool showsImage(const Scratch& scratch, const std::string& drawing) {
  const std::string picture = scratch.at("p.png");
  const Outcome outcome = runCadhost(scratch, {"--picture", picture, drawing});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  const QImage image(QString::fromStdString(picture));
  EXPECT_TRUE(removeAll(picture));
  return qAbs(qRed(image.pixel(image.width() / 2, image.height() / 2)) - 90) <= 2;
}

TEST(Drawings, imagesMovedTogetherWithTheirDrawingAreFound) {
  struct Case {
    const char* drawing;
    const char* image;
    const char* imageAfter;  // where only this one was moved to, or null
    bool isFound;
  };
  const Case cases[] = {
      {"plan.dxf", "map.tif", nullptr, true},
      {"plan.dxf", "images/2026/map.tif", nullptr, true},
      {"plans/plan.dxf", "images/map.tif", nullptr, true},
      {"plans/north/plan.dxf", "images/map.tif", nullptr, true},
      {"plans/plan.dxf", "images/map.tif", "plans/map.tif", true},
      {"plans/plan.dxf", "images/map.tif", "other/map.tif", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.drawing) + " " + c.image);
    const Scratch scratch("tarn_drawing_");
    for (const char* path : {c.drawing, c.image, c.imageAfter}) {
      if (path == nullptr) continue;
      ASSERT_TRUE(makeFolders(folderOf(scratch.at("old/") + path)));
    }
    const std::string image = scratch.at("old/") + c.image;
    ASSERT_TRUE(writeRaster(greyRaster(), image));
    const Outcome made = runCadhost(scratch, {"--save", scratch.at("old/") + c.drawing, image});
    ASSERT_EQ(made.exitCode, 0) << made.output;
    if (c.imageAfter != nullptr) {
      ASSERT_TRUE(replaceFile(image, scratch.at("old/") + c.imageAfter));
    }
    ASSERT_TRUE(replaceFile(scratch.at("old"), scratch.at("new")));
    EXPECT_EQ(showsImage(scratch, scratch.at("new/") + c.drawing), c.isFound);
  }
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
