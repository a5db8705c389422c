// Point clouds on paper and through the viewports of a sheet.
#include "base/file.h"
#include "base/text.h"
#include "tests/plot/plotfixture.h"
#include "tests/support/lasfiles.h"

namespace tarn::test {
namespace {

constexpr double kWest = 40500000;
constexpr double kSouth = 3512000;

/// A carpet of points every 0.1 units: red in the west, green in the east of 100 x 50.
std::string carpet() {
  LasSpec spec;
  for (int y = 0; y < 500; ++y) {
    for (int x = 0; x < 1000; ++x) {
      spec.points.push_back(
          {10 * x + 5, 10 * y + 5, 0, x < 500 ? 200 : 20, x < 500 ? 20 : 200, 20});
    }
  }
  return lasBytes(spec);
}

struct Spot {
  double mmX, mmY;  ///< from the paper's upper left corner
  QRgb color;
};
constexpr QRgb kRed = 0xffc81414;
constexpr QRgb kGreen = 0xff14c814;
constexpr QRgb kWhite = 0xffffffff;

constexpr int kCoarse = 60;  // dots per inch: a dot is wider than the points are apart

/// The squares of a millimetre about the spots are wholly of their colours.
void expectSpots(const QImage& page, const std::vector<Spot>& spots) {
  const double dot = 25.4 / kCoarse;
  for (const Spot& spot : spots) {
    for (double dy = -0.5; dy <= 0.5; dy += dot) {
      for (double dx = -0.5; dx <= 0.5; dx += dot) {
        const QRgb got = page.pixel(static_cast<int>((spot.mmX + dx) / dot),
                                    static_cast<int>((spot.mmY + dy) / dot));
        ASSERT_EQ(got, spot.color) << spot.mmX << "," << spot.mmY;
      }
    }
  }
}

TEST_F(Plot, PointCloudsAreDrawnForThePaperNotForTheScreen) {
  const std::string las = at("carpet.las");
  ASSERT_TRUE(writeFileAtomically(las, carpet()));
  const std::string model = at("cloud_model.png");
  const std::string sheet = at("cloud_sheet.png");
  const std::string paper = at("cloud_sheet.pdf");
  // The screen looks elsewhere, from far away.
  const std::string script =
      "-POINTCLOUDATTACH\n" + las + "\n0,0\n1\n0\nZOOM C 40600000,3600000 90000\n" +
      plotScript("Window\n40500000,3512000\n40500100,3512050", "Fit", "Center", "0", "PNG", model,
                 kCoarse) +
      "LAYOUT Set\nLayout1\nERASE L\n\nMVIEW 10,20 210,180\nMVIEW 220,30 400,250\nMSPACE\n"
      "SETVAR CVPORT 2\nZOOM C 40500050,3512025 80\nSETVAR CVPORT 3\n"
      "ZOOM C 40500050,3512025 55\nTWIST 90\nPSPACE\n" +
      sheetScript("PNG", sheet, kCoarse) + sheetScript("PDF", paper, kCoarse);
  const Outcome outcome = runCadhost(*scratch_, {"--size", "800x600", "--script", "-"}, script);
  ASSERT_EQ(outcome.exitCode, 0) << outcome.output;
  // 100 x 50 units on 287 x 143.5 mm in the middle of A4.
  expectSpots(page(model, kCoarse), {{10, 40, kRed},
                                     {140, 105, kRed},
                                     {157, 105, kGreen},
                                     {285, 170, kGreen},
                                     {148, 25, kWhite}});
  // The left viewport shows 2 mm a unit: the carpet from 15 to 215, cut at 210 of the sheet. The
  // right one shows 4 mm a unit, turned: east is up.
  for (const std::string& file : readable({sheet, paper})) {
    SCOPED_TRACE(file);
    expectSpots(page(file, kCoarse), {{20, 192, kRed},
                                      {110, 170, kRed},
                                      {120, 192, kGreen},
                                      {110, 135, kWhite},
                                      {315, 160, kRed},
                                      {315, 145, kGreen},
                                      {240, 200, kRed},
                                      {390, 60, kGreen}});
  }
}

}  // namespace
}  // namespace tarn::test
