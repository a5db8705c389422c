// No reduced pixel mixes what is not there into what is.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/raster/byrule.h"

namespace tarn::raster {
namespace {

constexpr int kWidth = 801, kHeight = 601;

bool inEllipse(int x, int y) {
  const double u = (x - 400) / 370.0, v = (y - 300) / 272.0;
  return u * u + v * v < 1;
}

struct Rim {
  const char* name;
  const char* file;
  int bands;
  /// What stands in the file where there is nothing.
  double hidden;
  SampleForm form;
};

std::vector<Rim> rims() {
  const std::vector<GDALColorInterp> rgba = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand,
                                             GCI_AlphaBand};
  const MaskKind none = MaskKind::kNone;
  std::vector<GDALColorEntry> grays;
  for (short i = 0; i < 256; ++i) grays.push_back({i, i, i, short(i == 77 ? 0 : 255)});
  return {
      {"alpha over black", "a.tif", 4, 0, {"GTiff", GDT_Byte, {"TILED=YES"}, rgba, {}, none, {}}},
      {"alpha over white", "a.tif", 4, 255, {"GTiff", GDT_Byte, {}, rgba, {}, none, {}}},
      {"nodata black", "a.tif", 3, 0, {"GTiff", GDT_Byte, {}, rgba, 0.0, none, {}}},
      {"nodata white", "a.tif", 1, 255, {"GTiff", GDT_Byte, {}, {}, 255.0, none, {}}},
      {"nodata gray", "a.img", 1, 77, {"HFA", GDT_Byte, {}, {}, 77.0, none, {}}},
      {"mask beside", "a.tif", 3, 128, {"GTiff", GDT_Byte, {}, rgba, {}, MaskKind::kBeside, {}}},
      {"mask inside",
       "a.tif",
       3,
       255,
       {"GTiff", GDT_Byte, {"COMPRESS=DEFLATE"}, rgba, {}, MaskKind::kInside, {}}},
      {"JPEG and mask",
       "a.tif",
       3,
       0,
       {"GTiff", GDT_Byte, {"COMPRESS=JPEG", "TILED=YES"}, rgba, {}, MaskKind::kInside, {}}},
      {"JPG and mask", "a.jpg", 3, 255, {"JPEG", GDT_Byte, {}, rgba, {}, MaskKind::kInside, {}}},
      {"clear palette entry", "a.img", 1, 77, {"HFA", GDT_Byte, {}, {}, {}, none, grays}},
      {"float", "a.tif", 1, -9999, {"GTiff", GDT_Float32, {}, {}, -9999.0, none, {}}},
      {"16 bits", "a.tif", 1, 0, {"GTiff", GDT_UInt16, {}, {}, {}, none, {}}},
  };
}

TEST(Rims, NoReductionMixesNothingIntoContent) {
  for (const Rim& rim : rims()) {
    for (const double content : {235.0, 21.0}) {
      SCOPED_TRACE(std::string(rim.name) + (content > 100 ? ", bright" : ", dark"));
      const Scratch scratch;
      const std::string path = scratch / rim.file;
      writeSamples(
          path, kWidth, kHeight, rim.bands, rim.form,
          [&](int x, int y, int band) {
            const bool there = inEllipse(x, y);
            return band == 3 ? (there ? 255.0 : 0.0) : there ? content : rim.hidden;
          },
          inEllipse);
      // What the file holds may ring beside the mask (JPEG); nothing else may join it.
      const auto image = openImage(path);
      ASSERT_TRUE(image);
      const Picture full = pixelsByRule(path, scaleSaid(*image).value_or(Scale{}));
      int least = 255, most = 0;
      for (size_t i = 0; i < full.pixels.size(); i += 3) {
        const uint8_t* p = &full.pixels[i];
        if ((p[0] | p[1] | p[2]) == 0) continue;
        least = std::min({least, int(p[0]), int(p[1]), int(p[2])});
        most = std::max({most, int(p[0]), int(p[1]), int(p[2])});
      }
      for (const bool pyramid : {false, true}) {
        ASSERT_TRUE(!pyramid || buildFor(path));
        const auto opened = openImage(path);
        for (const double r : {1.0, 2.0, 3.7, 4.0, 8.0, 13.0, 16.0, 32.0, 64.0}) {
          const Picture seen = readWindow(
              *opened, {0, 0, r, r, int(std::ceil(kWidth / r)), int(std::ceil(kHeight / r))});
          int shown = 0, mixed = 0;
          for (size_t i = 0; i < seen.pixels.size(); i += 3) {
            const uint8_t* p = &seen.pixels[i];
            if ((p[0] | p[1] | p[2]) == 0) continue;
            ++shown;
            for (int c = 0; c < 3; ++c) mixed += p[c] < least - 2 || p[c] > most + 2;
          }
          EXPECT_EQ(mixed, 0) << "reduction " << r << (pyramid ? ", pyramid" : "");
          const double area = 3.14159265 * 370 * 272 / (r * r);
          EXPECT_NEAR(shown, area, 0.02 * area + 8 * std::sqrt(area) / r) << "reduction " << r;
        }
      }
    }
  }
}

TEST(Rims, LinesOfAScannedPlanStayWhenItIsReduced) {
  // Lines of two pixels every 90; the paper is transparent.
  const auto isInk = [](int x, int y) { return x % 90 < 2 || y % 90 < 2; };
  for (const bool pyramid : {false, true}) {
    const Scratch scratch;
    const std::string path = scratch / "a.tif";
    writeSamples(
        path, kWidth, kHeight, 1, {"GTiff", GDT_Byte, {"NBITS=1"}, {}, {}, {}, {}},
        [&](int x, int y, int) { return isInk(x, y) ? 0 : 1; }, isInk);
    ASSERT_TRUE(!pyramid || buildFor(path));
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    for (const double r : {1.0, 2.0, 3.0, 5.0, 8.0}) {
      const Picture seen = readWindow(*image, {0, 0, r, r, int(kWidth / r), int(kHeight / r)});
      int missing = 0, ink = 0;
      for (int y = 0; y < seen.height; ++y) {
        for (int x = 0; x < seen.width; ++x) {
          const bool shown = seen.at(x, y)[0] == 1;
          EXPECT_TRUE(shown || seen.at(x, y)[0] == 0 || seen.at(x, y)[0] == 255);
          ink += shown;
          // The cell with the middle of a line in it.
          const double left = std::floor(x * r / 90 + 1) * 90 + 1;
          missing += !shown && left >= x * r + 90 && left < (x + 1) * r + 90;
        }
      }
      EXPECT_EQ(missing, 0) << "reduction " << r;
      EXPECT_LT(ink, seen.width * seen.height * 0.4) << "reduction " << r;
    }
  }
}

}  // namespace
}  // namespace tarn::raster
