// From a file on disk to paper: the PDF, drawn by poppler, and the PNG of the real program against
// GDAL's reading of the full-resolution pixels of the same ground.

#include <gtest/gtest.h>

#include <QByteArray>
#include <cstdio>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "tests/plot/plotfixture.h"
#include "tests/support/system.h"

namespace tarn::test {
namespace {

constexpr double kDot = 25.4 / kDpi;
constexpr const char* kNoReader = "nothing here reads a PDF";

struct ModelCase {
  const char* name;
  const char* before;  // script lines
  const char* twist;
  const char* area;
  const char* scale;
  const char* offset;
  const char* rotation;
  Placed placed;
};

TEST_F(Plot, TheModelIsWhereItBelongs) {
  const ModelCase cases[] = {
      {"extents",
       "",
       "0",
       "Extents",
       "Fit",
       "Center",
       "0",
       {kMiddleX, kMiddleY, 148.5, 105, 1.5, 0, {60, 10, 177, 190}}},
      {"window, turned by 90",
       "",
       "0",
       "Window\n40500100,3512400\n40500300,3512500",
       "Fit",
       "Center",
       "90",
       {40500200, 3512450, 148.5, 105, 1, 90, {100, 6, 97, 198}}},
      {"window, turned by 180",
       "",
       "0",
       "Window\n40500100,3512400\n40500300,3512500",
       "Fit",
       "Center",
       "180",
       {40500200, 3512450, 148.5, 105, 200 / 287.0, 180, {6, 36, 285, 138}}},
      {"window at 1:500, turned by 270",
       "",
       "0",
       "Window\n40500100,3512400\n40500150,3512430",
       "1000=500",
       "12,7",
       "270",
       {40500100, 3512400, 12, 17, 0.5, 270, {13, 18, 58, 98}}},
      {"display, twisted",
       "",
       "30",
       "Display",
       "Fit",
       "Center",
       "0",
       {kMiddleX, kMiddleY, 148.5, 105, 1, 30, {80, 40, 130, 130}}},
      {"limits",
       "SETVAR LIMMIN 40500050,3512350\nSETVAR LIMMAX 40500250,3512450\n",
       "0",
       "Limits",
       "Fit",
       "Center",
       "0",
       {40500150, 3512400, 148.5, 105, 200 / 287.0, 0, {6, 36, 285, 138}}},
      {"named view",
       "ZOOM C 40500100,3512500 80\nVIEW Save\nhere\nZOOM E\n",
       "0",
       "View\nhere",
       "Fit",
       "Center",
       "0",
       {40500100, 3512500, 148.5, 105, 0.4, 0, {20, 10, 257, 190}}},
      {"more than the paper holds",
       "",
       "0",
       "Extents",
       "1=1",
       "0,0",
       "0",
       {kLeft, kTop - 300, 5, 205, 1, 0, {6, 6, 285, 198}}},
  };
  for (const ModelCase& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string pdf = at("model.pdf");
    const std::string png = at("model.png");
    const Outcome outcome =
        run(std::string(c.before) + plotScript(c.area, c.scale, c.offset, c.rotation, "PDF", pdf) +
                plotScript(c.area, c.scale, c.offset, c.rotation, "PNG", png),
            c.twist);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
    for (const std::string& file : readable({pdf, png})) {
      SCOPED_TRACE(extensionOf(file));
      const QImage paper = page(file);
      EXPECT_NEAR(paper.width(), 297 / kDot, 1.5);
      EXPECT_NEAR(paper.height(), 210 / kDot, 1.5);
      expectGround(paper, c.placed);
      EXPECT_EQ(paper.pixel(4, 4), qRgb(255, 255, 255)) << "margins stay white";
    }
    if (hasJudges()) {
      EXPECT_EQ(pictures(pdf), 1);
    }
  }
}

TEST_F(Plot, EveryResolutionShowsTheSameGround) {
  for (const int dpi : {72, 150}) {
    SCOPED_TRACE(dpi);
    const std::string pdf = at("dpi.pdf");
    const std::string png = at("dpi.png");
    const std::string area = "Window\n40500100,3512400\n40500300,3512500";
    const Outcome outcome = run(plotScript(area, "Fit", "Center", "0", "PDF", pdf, dpi) +
                                plotScript(area, "Fit", "Center", "0", "PNG", png, dpi));
    ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
    const Placed placed{40500200, 3512450, 148.5, 105, 200 / 287.0, 0, {6, 36, 285, 138}};
    for (const std::string& file : readable({pdf, png})) {
      SCOPED_TRACE(extensionOf(file));
      expectGround(page(file, dpi), placed, dpi);
    }
    // The picture in the PDF has the pixels of the resolution, no more and no fewer.
    if (hasJudges()) {
      EXPECT_NEAR(pictureResolution(pdf), dpi, 1);
    }
    EXPECT_NEAR(QImage(QString::fromStdString(png)).dotsPerMeterX() * 0.0254, dpi, 0.1);
  }
}

/// A sheet (A3 lying, 5 mm of margin) with two viewports: 1 mm of the left one is 1.25 units; the
/// right one shows 0.5 units a millimetre, twisted by 30 degrees.
const char* const kSheet =
    "LAYOUT Set\nLayout1\nERASE L\n\nMVIEW 10,20 210,180\nMVIEW 220,30 400,250\nMSPACE\n"
    "SETVAR CVPORT 2\nZOOM C 40500200,3512450 200\nSETVAR CVPORT 3\n"
    "ZOOM C 40500150,3512480 110\nTWIST 30\nPSPACE\nLINE 15,200 205,260\n\n";

/// The two viewports on the paper: sheet coordinates begin 5 mm from its lower left corner.
std::vector<Placed> sheetPlaces() {
  return {{40500200, 3512450, 115, 297 - 105, 1.25, 0, {15, 112, 200, 160}},
          {40500150, 3512480, 315, 297 - 145, 0.5, 30, {225, 42, 180, 220}}};
}

TEST_F(Plot, ASheetShowsTheModelThroughItsViewports) {
  const std::string pdf = at("sheet.pdf");
  const std::string png = at("sheet.png");
  const Outcome outcome = run(kSheet + sheetScript("PDF", pdf) + "SETVAR TILEMODE 1\n" +
                              sheetScript("PNG", png) + "SETVAR CTAB\n\n");
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("<\"Model\">"), std::string::npos) << "the tab of before is back";
  for (const std::string& file : readable({pdf, png})) {
    SCOPED_TRACE(extensionOf(file));
    const QImage paper = page(file);
    for (const Placed& placed : sheetPlaces()) expectGround(paper, placed);
    // Between the viewports there is paper, and the line on the sheet is black.
    EXPECT_EQ(paper.pixel(qRound(220 / kDot), qRound(150 / kDot)), qRgb(255, 255, 255));
    int dark = 0;
    for (int y = 0; y < paper.height(); ++y) dark += qGray(paper.pixel(qRound(115 / kDot), y)) < 80;
    EXPECT_GE(dark, 1);
  }
  if (hasJudges()) {
    EXPECT_EQ(pictures(pdf), 2) << "one a viewport";
  }
}

/// All content streams of a PDF, inflated.
std::string contents(const std::string& file) {
  const std::string bytes = readFile(file, 1u << 30).take();
  std::string all;
  size_t at = 0;
  while ((at = bytes.find("stream\n", at)) != std::string::npos) {
    at += 7;
    if (bytes.compare(at - 10, 3, "end") == 0) continue;
    const size_t end = bytes.find("endstream", at);
    QByteArray packed("\x00\x10\x00\x00", 4);
    packed.append(bytes.data() + at, static_cast<int>(end - at));
    const QByteArray text = qUncompress(packed);
    if (text.size() < 1000000) all += text.toStdString();
  }
  return all;
}

TEST_F(Plot, LinesStayLines) {
  const std::string pdf = at("lines.pdf");
  const Outcome outcome = run("LINE 40500010,3512310 40500390,3512590\n\n" +
                              plotScript("Extents", "Fit", "Center", "0", "PDF", pdf));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  const std::string text = contents(pdf);
  // The line as one stroke, beside the marker of the image.
  EXPECT_NE(text.find(" l\n"), std::string::npos);
  EXPECT_NE(text.find("S\n"), std::string::npos);
  if (hasJudges()) {
    EXPECT_EQ(pictures(pdf), 1);
  }
}

TEST_F(Plot, WhatIsTooLargeIsPlottedCoarserAndSaysSo) {
  const Raster strip = makeRaster(10000, 500, 0, 0, 1, [](int column, int row, uint8_t* rgb) {
    rgb[0] = static_cast<uint8_t>(20 + column / 50);
    rgb[1] = static_cast<uint8_t>(20 + row / 3);
    rgb[2] = 90;
  });
  ASSERT_TRUE(writeRaster(strip, at("strip.tif")));
  const std::string pdf = at("large.pdf");
  const Outcome outcome = runCadhost(
      *scratch_, {"--script", "-", at("strip.tif")},
      "PLOT\nYes\nModel\nPDF\nA1\nMillimeters\nLandscape\n0\nExtents\nFit\nCenter\n400\n" + pdf +
          "\nNo\nYes\n");
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("strip.tif选择范围过大！"), std::string::npos) << outcome.output;
  if (!hasJudges()) GTEST_SKIP() << kNoReader;
  const Outcome list = runProgram("/usr/bin/pdfimages", {"-list", pdf});
  int width = 0;
  const size_t line = list.output.find(" image ");
  ASSERT_NE(line, std::string::npos);
  ASSERT_EQ(std::sscanf(list.output.c_str() + line, " image %d", &width), 1);
  EXPECT_LE(width, 8192);
  EXPECT_GT(width, 8100);
  // A pixel of the strip is 0.0831 mm of paper.
  const QImage paper = page(pdf);
  const double mm = 831.0 / 10000;
  for (const int column : {500, 2500, 5000, 9500}) {
    const QRgb got = paper.pixel(qRound((5 + column * mm) / kDot), qRound(594 / 2.0 / kDot));
    EXPECT_NEAR(qRed(got), 20 + column / 50, 2) << column;
  }
}

TEST_F(Plot, BadAnswersAreRefusedWithAReason) {
  const struct {
    const char* script;
    const char* message;
  } cases[] = {
      {"PLOT\nNo\nnone\nModel\nPDF\n/no/such/folder/a.pdf\nNo\nYes\n", "/no/such/folder/a.pdf"},
      {"PLOT\nYes\nModel\nPDF\nA9\nA4\nMillimeters\nLandscape\n0\nExtents\n1=0\nFit\nx\nCenter\n"
       "5\n100\n/no/such/folder/b.pdf\nNo\nYes\n",
       "\"A9\" is no paper"},
      {"PLOT\nYes\nModel\nPDF\nA4\nMillimeters\nLandscape\n0\nView\nnone\nFit\nCenter\n100\nc.pdf\n"
       "No\nYes\n",
       "There is no view \"none\""},
      {"PLOT\nYes\nModel\nPDF\nA4\nMillimeters\nLandscape\n0\nExtents\n1=1\n9000,0\n100\nc."
       "pdf\nNo\n"
       "Yes\n",
       "outside the paper"},
  };
  for (const auto& one : cases) {
    const Outcome outcome = run(one.script);
    EXPECT_EQ(outcome.exitCode, 1) << outcome.output;
    EXPECT_NE(outcome.output.find(one.message), std::string::npos) << outcome.output;
  }
}

TEST_F(Plot, SheetsAndViewsComeBackFromTheirFile) {
  const std::string drawing = at("sheets.dxf");
  const std::string pdf = at("again.pdf");
  const Outcome saved = runCadhost(
      *scratch_, {"--script", "-", "--save", drawing, at("smooth.tif")},
      kSheet + std::string("SETVAR TILEMODE 1\nZOOM C 40500100,3512500 80\nTWIST 20\nVIEW Save\n"
                           "here\n"));
  ASSERT_EQ(saved.exitCode, 0) << saved.output;
  const Outcome opened =
      runCadhost(*scratch_, {"--script", "-", drawing},
                 sheetScript("PDF", pdf) + "VIEW Restore\nhere\nSETVAR VIEWSIZE\nSETVAR VIEWCTR\n");
  ASSERT_EQ(opened.exitCode, 0) << opened.output;
  EXPECT_NE(opened.output.find("VIEWSIZE = 80 "), std::string::npos) << opened.output;
  EXPECT_NE(opened.output.find("VIEWCTR = 40500100,3512500,0"), std::string::npos);
  if (!hasJudges()) GTEST_SKIP() << kNoReader;
  const QImage paper = page(pdf);
  for (const Placed& placed : sheetPlaces()) expectGround(paper, placed);
}

}  // namespace
}  // namespace tarn::test
