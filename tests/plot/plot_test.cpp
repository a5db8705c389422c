// From a file on disk to paper: the PDF, drawn by poppler, and the PNG of the real program against
// GDAL's reading of the full-resolution pixels of the same ground.

#include <gtest/gtest.h>

#include <QByteArray>
#include <QRectF>
#include <cmath>
#include <cstdio>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::test {
namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr double kLeft = 40500000.35;
constexpr double kTop = 3512600.75;
constexpr double kPixel = 0.1;
constexpr double kMiddleX = kLeft + kWidth * kPixel / 2;
constexpr double kMiddleY = kTop - kHeight * kPixel / 2;
constexpr int kDpi = 120;
constexpr double kDot = 25.4 / kDpi;

/// Ground on the paper as the test expects it: `x`, `y` stand at `mmX`, `mmY` from the paper's
/// upper left corner, a dot is `unit` drawing units, and all is turned by `turn` degrees.
struct Placed {
  double x, y;
  double mmX, mmY;
  double unit;
  double turn;
  QRectF inside;  ///< millimetres of paper that the image covers for certain
};

View viewOf(const Placed& placed, const QImage& page) {
  View view;
  view.width = page.width();
  view.screenHeight = page.height();
  view.height = placed.unit * page.height();
  view.twist = placed.turn;
  view.centerX = placed.x;
  view.centerY = placed.y;
  double x = 0;
  double y = 0;
  view.toGround(placed.mmX / kDot, placed.mmY / kDot, x, y);
  view.centerX += placed.x - x;
  view.centerY += placed.y - y;
  return view;
}

class Plot : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    scratch_ = new Scratch("tarn_plot_");
    raster_ = new Raster(
        makeRaster(kWidth, kHeight, kLeft, kTop, kPixel, [](int column, int row, uint8_t* rgb) {
          rgb[0] = static_cast<uint8_t>(128 + 60 * std::sin(column / 640.0) +
                                        50 * std::cos(row / 570.0));
          rgb[1] = static_cast<uint8_t>(120 + 90 * std::sin((column + row) / 900.0));
          rgb[2] = static_cast<uint8_t>(30 + 0.024 * column + 0.003 * row);
        }));
    ASSERT_TRUE(writeRaster(*raster_, scratch_->at("smooth.tif"), "GTiff", {"TILED=YES"}));
  }
  static void TearDownTestSuite() {
    delete raster_;
    delete scratch_;
  }

  static std::string at(const std::string& name) { return scratch_->at(name); }

  /// Runs the script in a drawing with the image; the view shows 200 units about its middle.
  static Outcome run(const std::string& script, const std::string& twist = "0") {
    const std::string view = "40500200.35,3512450.75,200," + twist;
    return runCadhost(*scratch_,
                      {"--size", "800x600", "--view", view, "--script", "-", at("smooth.tif")},
                      script);
  }

  /// The page as pixels at the plot's resolution.
  static QImage page(const std::string& file) {
    if (extensionOf(file) == ".png") return QImage(QString::fromStdString(file));
    const std::string stem = at("page");
    const Outcome outcome =
        runProgram("/usr/bin/pdftoppm",
                   {"-r", std::to_string(kDpi), "-png", "-singlefile", "-aa", "no", file, stem});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    return QImage(QString::fromStdString(stem + ".png"));
  }

  /// Pictures in a PDF, masks left out.
  static int pictures(const std::string& file) {
    const Outcome outcome = runProgram("/usr/bin/pdfimages", {"-list", file});
    int count = 0;
    for (const std::string& line : split(outcome.output, '\n')) {
      int number = 0;
      int index = 0;
      char kind[32] = "";
      const int read = std::sscanf(line.c_str(), "%d %d %31s", &number, &index, kind);
      count += read == 3 && std::string(kind) == "image";
    }
    return count;
  }

  static void expectGround(const QImage& page, const Placed& placed) {
    const View view = viewOf(placed, page);
    long compared = 0;
    long beyond = 0;
    double largest = 0;
    for (int y = 0; y < page.height(); ++y) {
      for (int x = 0; x < page.width(); ++x) {
        if (!placed.inside.adjusted(0.8, 0.8, -0.8, -0.8)
                 .contains((x + 0.5) * kDot, (y + 0.5) * kDot)) {
          continue;
        }
        double expected[3];
        if (!expectedPixel(*raster_, view, x, y, 1, expected)) {
          ADD_FAILURE() << "the test looks outside the image at " << x << "," << y;
          return;
        }
        const QRgb got = page.pixel(x, y);
        const int channels[] = {qRed(got), qGreen(got), qBlue(got)};
        double most = 0;
        for (int c = 0; c < 3; ++c) most = std::max(most, std::fabs(channels[c] - expected[c]));
        ++compared;
        beyond += most > 2.5;
        largest = std::max(largest, most);
      }
    }
    EXPECT_GT(compared, 20000);
    EXPECT_LE(beyond * 1000, compared) << beyond << " of " << compared << ", largest " << largest;
  }

  static Scratch* scratch_;
  static Raster* raster_;
};

Scratch* Plot::scratch_ = nullptr;
Raster* Plot::raster_ = nullptr;

/// A4 lying, 5 mm of margin: 287 x 200 printable.
std::string plotScript(const std::string& area, const std::string& scale, const std::string& offset,
                       const std::string& rotation, const std::string& device,
                       const std::string& file) {
  return "PLOT\nYes\nModel\n" + device + "\nA4\nMillimeters\nLandscape\n" + rotation + "\n" + area +
         "\n" + scale + "\n" + offset + "\n" + std::to_string(kDpi) + "\n" + file + "\nNo\nYes\n";
}

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
       {kMiddleX, kMiddleY, 148.5, 105, kDot * 300 / 200, 0, {60, 10, 177, 190}}},
      {"window, turned by 90",
       "",
       "0",
       "Window\n40500100,3512400\n40500300,3512500",
       "Fit",
       "Center",
       "90",
       {40500200, 3512450, 148.5, 105, kDot, 90, {100, 6, 97, 198}}},
      {"window, turned by 180",
       "",
       "0",
       "Window\n40500100,3512400\n40500300,3512500",
       "Fit",
       "Center",
       "180",
       {40500200, 3512450, 148.5, 105, kDot * 200 / 287, 180, {6, 36, 285, 138}}},
      {"window at 1:500, turned by 270",
       "",
       "0",
       "Window\n40500100,3512400\n40500150,3512430",
       "1000=500",
       "12,7",
       "270",
       {40500100, 3512400, 12, 17, kDot * 0.5, 270, {13, 18, 58, 98}}},
      {"display, twisted",
       "",
       "30",
       "Display",
       "Fit",
       "Center",
       "0",
       {kMiddleX, kMiddleY, 148.5, 105, kDot, 30, {80, 40, 130, 130}}},
      {"limits",
       "SETVAR LIMMIN 40500050,3512350\nSETVAR LIMMAX 40500250,3512450\n",
       "0",
       "Limits",
       "Fit",
       "Center",
       "0",
       {40500150, 3512400, 148.5, 105, kDot * 200 / 287, 0, {6, 36, 285, 138}}},
      {"named view",
       "ZOOM C 40500100,3512500 80\nVIEW Save\nhere\nZOOM E\n",
       "0",
       "View\nhere",
       "Fit",
       "Center",
       "0",
       {40500100, 3512500, 148.5, 105, kDot * 0.4, 0, {20, 10, 257, 190}}},
      {"more than the paper holds",
       "",
       "0",
       "Extents",
       "1=1",
       "0,0",
       "0",
       {kLeft, kTop - 300, 5, 205, kDot, 0, {6, 6, 285, 198}}},
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
    for (const std::string& file : {pdf, png}) {
      SCOPED_TRACE(extensionOf(file));
      const QImage paper = page(file);
      EXPECT_NEAR(paper.width(), 297 / kDot, 1.5);
      EXPECT_NEAR(paper.height(), 210 / kDot, 1.5);
      expectGround(paper, c.placed);
      EXPECT_EQ(paper.pixel(4, 4), qRgb(255, 255, 255)) << "margins stay white";
    }
    EXPECT_EQ(pictures(pdf), 1);
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
  return {{40500200, 3512450, 115, 297 - 105, kDot * 1.25, 0, {15, 112, 200, 160}},
          {40500150, 3512480, 315, 297 - 145, kDot * 0.5, 30, {225, 42, 180, 220}}};
}

std::string sheetScript(const std::string& device, const std::string& file) {
  return "PLOT\nYes\nLayout1\n" + device + "\nA3\nMillimeters\nLandscape\n0\nLayout\n1=1\n0,0\n" +
         std::to_string(kDpi) + "\n" + file + "\nNo\nYes\n";
}

TEST_F(Plot, ASheetShowsTheModelThroughItsViewports) {
  const std::string pdf = at("sheet.pdf");
  const std::string png = at("sheet.png");
  const Outcome outcome = run(kSheet + sheetScript("PDF", pdf) + "SETVAR TILEMODE 1\n" +
                              sheetScript("PNG", png) + "SETVAR CTAB\n\n");
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("<\"Model\">"), std::string::npos) << "the tab of before is back";
  for (const std::string& file : {pdf, png}) {
    SCOPED_TRACE(extensionOf(file));
    const QImage paper = page(file);
    for (const Placed& placed : sheetPlaces()) expectGround(paper, placed);
    // Between the viewports there is paper, and the line on the sheet is black.
    EXPECT_EQ(paper.pixel(qRound(220 / kDot), qRound(150 / kDot)), qRgb(255, 255, 255));
    int dark = 0;
    for (int y = 0; y < paper.height(); ++y) dark += qGray(paper.pixel(qRound(115 / kDot), y)) < 80;
    EXPECT_GE(dark, 1);
  }
  EXPECT_EQ(pictures(pdf), 2) << "one a viewport";
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
  EXPECT_EQ(pictures(pdf), 1);
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
  const QImage paper = page(pdf);
  for (const Placed& placed : sheetPlaces()) expectGround(paper, placed);
}

TEST_F(Plot, ADiskThatIsFullKeepsTheOldFile) {
  const std::string pdf = at("kept.pdf");
  ASSERT_TRUE(writeFileAtomically(pdf, "the old plot"));
  const std::string script = at("plot.scr");
  ASSERT_TRUE(writeFileAtomically(script, plotScript("Extents", "Fit", "Center", "0", "PDF", pdf)));
  const Outcome outcome = runProgram(
      "/usr/bin/prlimit", {"--fsize=60000", joinPath(TARN_BIN_DIR, "cadhost"), "--headless",
                           "--profile", at("profile"), "--script", script, at("smooth.tif")});
  EXPECT_EQ(outcome.exitCode, 1) << outcome.output;
  EXPECT_NE(outcome.output.find("kept.pdf"), std::string::npos) << outcome.output;
  EXPECT_EQ(readFile(pdf, 1000).take(), "the old plot");
  for (const std::string& name : listFolder(scratch_->folder())) {
    EXPECT_EQ(name.find(".part"), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace tarn::test
