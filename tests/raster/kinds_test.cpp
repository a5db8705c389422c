// Every kind of image comes out as gray or RGB by the rule.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "base/file.h"
#include "tests/raster/byrule.h"

namespace tarn::raster {
namespace {

constexpr int kWidth = 301, kHeight = 207;

bool inEllipse(int x, int y) {
  const double u = (x - 150) / 130.0, v = (y - 100) / 90.0;
  return u * u + v * v < 1;
}

struct Kind {
  const char* name;
  const char* file;
  int bands;
  /// Samples go from `low` to `high`; some are exactly these.
  double low;
  double high;
  SampleForm form;
  /// The last band is alpha.
  bool alpha = false;
  /// The pyramid is the standard one.
  bool plain = false;
};

/// Waves, a corner of the lowest and one of the highest value, and some nodata; alpha an ellipse.
double sampleOf(const Kind& kind, int x, int y, int band) {
  if (kind.alpha && band + 1 == kind.bands)
    return inEllipse(x, y) ? 1 + (kind.high - 1) * ((x * 7 + y * 3) % 11) / 10 : 0;
  const bool whole = kind.form.type != GDT_Float32 && kind.form.type != GDT_Float64;
  if (kind.form.nodata && (x / 9 + y / 13) % 5 == 0) return *kind.form.nodata;
  if (x < 40 && y < 90) return kind.low;
  if (x > 250 && y < 90) return kind.high;
  const double wave = 0.5 + 0.27 * std::sin(x / (17.0 + band)) + 0.22 * std::cos(y / (11.0 + band));
  const double value = kind.low + (kind.high - kind.low) * wave;
  return whole ? std::round(value) : value;
}

std::vector<GDALColorEntry> palette(bool clearThird) {
  std::vector<GDALColorEntry> entries;
  for (short i = 0; i < 200; ++i)
    entries.push_back({short(255 - i), short(i * 3 % 256), short(i), 255});
  entries[0] = {0, 0, 0, 255};
  entries[1] = {255, 255, 255, 255};
  if (clearThird) entries[3].c4 = 0;
  return entries;
}

std::vector<GDALColorEntry> grays() {
  std::vector<GDALColorEntry> entries;
  for (short i = 0; i < 256; ++i)
    entries.push_back({short(255 - i), short(255 - i), short(255 - i), 255});
  return entries;
}

const std::vector<GDALColorInterp> kRgba = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand,
                                            GCI_AlphaBand};
const std::vector<GDALColorInterp> kBgrAndMore = {GCI_BlueBand, GCI_GreenBand, GCI_RedBand,
                                                  GCI_Undefined, GCI_AlphaBand};

std::vector<Kind> kinds() {
  const auto tiff = [](GDALDataType type, std::vector<std::string> options = {},
                       std::vector<GDALColorInterp> colours = {}) {
    return SampleForm{"GTiff", type, std::move(options), std::move(colours), {}, {}, {}};
  };
  const auto hfa = [](GDALDataType type, std::vector<std::string> options = {}) {
    return SampleForm{"HFA", type, std::move(options), {}, {}, {}, {}};
  };
  const auto nodata = [](SampleForm form, double value) {
    form.nodata = value;
    return form;
  };
  const auto masked = [](SampleForm form, MaskKind mask) {
    form.mask = mask;
    return form;
  };
  const auto coloured = [](SampleForm form, std::vector<GDALColorEntry> entries) {
    form.palette = std::move(entries);
    return form;
  };
  std::vector<Kind> all = {
      {"gray", "a.tif", 1, 0, 255, tiff(GDT_Byte), false, true},
      {"min is white", "a.tif", 1, 0, 255, tiff(GDT_Byte, {"PHOTOMETRIC=MINISWHITE"})},
      {"4 bits, min is white", "a.tif", 1, 0, 15,
       tiff(GDT_Byte, {"NBITS=4", "PHOTOMETRIC=MINISWHITE"})},
      {"16 bits, min is white", "a.tif", 1, 0, 65535, tiff(GDT_UInt16, {"PHOTOMETRIC=MINISWHITE"})},
      {"gray and alpha", "a.tif", 2, 0, 255, tiff(GDT_Byte, {"ALPHA=YES"}), true},
      {"RGBA", "a.tif", 4, 0, 255, tiff(GDT_Byte, {"TILED=YES", "COMPRESS=ZSTD"}, kRgba), true},
      {"RGBA in planes", "a.tif", 4, 0, 255,
       tiff(GDT_Byte, {"INTERLEAVE=BAND", "COMPRESS=PACKBITS"}, kRgba), true},
      {"RGBA of 16 bits", "a.tif", 4, 0, 65535, tiff(GDT_UInt16, {"COMPRESS=LZW"}, kRgba), true},
      {"blue, green, red, infrared, alpha", "a.tif", 5, 0, 255, tiff(GDT_Byte, {}, kBgrAndMore),
       true},
      {"31 unnamed bands", "a.tif", 31, 0, 255,
       tiff(GDT_Byte, {"PHOTOMETRIC=MINISBLACK", "TILED=YES"})},
      {"two bands", "a.tif", 2, 0, 255, tiff(GDT_Byte, {"ALPHA=NO"})},
      {"nodata 77", "a.tif", 1, 0, 255, nodata(tiff(GDT_Byte, {"ENDIANNESS=BIG"}), 77)},
      {"nodata 255 of RGB", "a.tif", 3, 0, 255, nodata(tiff(GDT_Byte), 255)},
      {"nodata 0 of RGB", "a.tif", 3, 0, 255, nodata(tiff(GDT_Byte), 0), false, true},
      {"nodata that no byte can be", "a.tif", 1, 0, 255, tiff(GDT_Byte), false, true},
      {"mask inside", "a.tif", 3, 0, 255,
       masked(tiff(GDT_Byte, {"TILED=YES", "COMPRESS=DEFLATE"}, {kRgba}), MaskKind::kInside)},
      {"mask beside", "a.tif", 3, 0, 255, masked(tiff(GDT_Byte), MaskKind::kBeside)},
      {"mask of JPEG tiles", "a.tif", 3, 0, 255,
       masked(tiff(GDT_Byte, {"COMPRESS=JPEG", "TILED=YES", "PHOTOMETRIC=YCBCR"}),
              MaskKind::kInside)},
      {"1 bit", "a.tif", 1, 0, 1, tiff(GDT_Byte, {"NBITS=1", "COMPRESS=CCITTFAX4"})},
      {"1 bit, min is white", "a.tif", 1, 0, 1,
       tiff(GDT_Byte, {"NBITS=1", "PHOTOMETRIC=MINISWHITE", "COMPRESS=PACKBITS"})},
      {"2 bits", "a.tif", 1, 0, 3, tiff(GDT_Byte, {"NBITS=2"})},
      {"RGB of 5 bits", "a.tif", 3, 0, 31, tiff(GDT_Byte, {"NBITS=5"})},
      {"12 bits", "a.tif", 1, 0, 4095, tiff(GDT_UInt16, {"NBITS=12", "COMPRESS=DEFLATE"})},
      {"RGB of 16 bits, big-endian BigTIFF", "a.tif", 3, 0, 65535,
       tiff(GDT_UInt16, {"ENDIANNESS=BIG", "BIGTIFF=YES", "PREDICTOR=2", "COMPRESS=LZW"})},
      {"16 bits with nodata", "a.tif", 1, 100, 3000, nodata(tiff(GDT_UInt16), 1)},
      {"signed 16 bits", "a.tif", 1, -500, 3000, nodata(tiff(GDT_Int16, {"TILED=YES"}), -32768)},
      {"unsigned 32 bits", "a.tif", 1, 0, 4294967295.0, tiff(GDT_UInt32)},
      {"signed 32 bits", "a.tif", 1, -1e9, 1e9, nodata(tiff(GDT_Int32), -2147483648.0)},
      {"64 bits", "a.tif", 1, -1e12, 1e12, tiff(GDT_Int64)},
      {"float", "a.tif", 1, -3.25, 17.5, nodata(tiff(GDT_Float32, {"COMPRESS=LERC"}), -9999)},
      {"float with nodata NaN", "a.tif", 1, -3.25, 17.5,
       nodata(tiff(GDT_Float32, {"COMPRESS=DEFLATE", "PREDICTOR=3"}), std::nan(""))},
      {"float with infinities", "a.tif", 3, -3.25, 17.5, nodata(tiff(GDT_Float32), HUGE_VAL)},
      {"half floats", "a.tif", 1, -3.25, 17.5, tiff(GDT_Float32, {"NBITS=16"})},
      {"double, far from zero", "a.tif", 1, 4e6, 4e6 + 0.01, tiff(GDT_Float64)},
      {"CMYK", "a.tif", 4, 0, 255, tiff(GDT_Byte, {"PHOTOMETRIC=CMYK"})},
      {"CMYK of 16 bits", "a.tif", 4, 0, 65535, tiff(GDT_UInt16, {"PHOTOMETRIC=CMYK"})},
      {"palette", "a.tif", 1, 0, 199, coloured(tiff(GDT_Byte), palette(false))},
      {"palette with nodata", "a.tif", 1, 0, 199,
       nodata(coloured(tiff(GDT_Byte), palette(false)), 5)},
      {"gray palette", "a.tif", 1, 0, 255, coloured(tiff(GDT_Byte), grays())},
      {"IMG palette with a clear entry", "a.img", 1, 0, 199,
       coloured(hfa(GDT_Byte), palette(true))},
      {"IMG 1 bit", "a.img", 1, 0, 1, hfa(GDT_Byte, {"NBITS=1"})},
      {"IMG 2 bits", "a.img", 1, 0, 3, hfa(GDT_Byte, {"NBITS=2", "COMPRESSED=YES"})},
      {"IMG 4 bits", "a.img", 1, 0, 15, hfa(GDT_Byte, {"NBITS=4"})},
      {"IMG signed bytes", "a.img", 1, 0, 255, hfa(GDT_Byte, {"PIXELTYPE=SIGNEDBYTE"})},
      {"IMG 16 bits, compressed", "a.img", 3, 0, 65535, hfa(GDT_UInt16, {"COMPRESSED=YES"})},
      {"IMG float in an .ige", "a.img", 1, -3, 9, nodata(hfa(GDT_Float32, {"USE_SPILL=YES"}), -99)},
      {"IMG of 4 bands", "a.img", 4, 0, 255, hfa(GDT_Byte)},
      {"JPG with a mask", "a.jpg", 3, 0, 255,
       masked({"JPEG", GDT_Byte, {"QUALITY=90"}, kRgba, {}, {}, {}}, MaskKind::kInside)},
      {"JPG in CMYK",
       "a.jpg",
       4,
       0,
       255,
       {"JPEG",
        GDT_Byte,
        {},
        {GCI_CyanBand, GCI_MagentaBand, GCI_YellowBand, GCI_BlackBand},
        {},
        {},
        {}},
       false,
       true},
  };
  for (Kind& kind : all) {
    if (std::strcmp(kind.name, "nodata that no byte can be") == 0) kind.form.nodata = -9999;
  }
  return all;
}

/// The scale by sorting all samples that are content: not black or white by the rule of a scale
/// that keeps every value.
Scale sortedScale(const std::string& path, const RasterImage& image) {
  const Picture shown = readAll(image);
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER);
  std::vector<double> samples;
  for (int b = 1; b <= std::min(3, dataset->GetRasterCount()); ++b) {
    std::vector<double> plane(size_t(shown.width) * shown.height);
    EXPECT_EQ(
        dataset->GetRasterBand(b)->RasterIO(GF_Read, 0, 0, shown.width, shown.height, plane.data(),
                                            shown.width, shown.height, GDT_Float64, 0, 0, nullptr),
        CE_None);
    for (size_t i = 0; i < plane.size(); ++i) {
      const uint8_t* p = &shown.pixels[3 * i];
      const bool key = (p[0] | p[1] | p[2]) == 0 || (p[0] & p[1] & p[2]) == 255;
      const bool isSigned =
          dataset->GetRasterBand(b)->GetMetadataItem("PIXELTYPE", "IMAGE_STRUCTURE");
      if (!key) samples.push_back(isSigned && plane[i] > 127 ? plane[i] - 256 : plane[i]);
    }
  }
  GDALClose(dataset);
  std::sort(samples.begin(), samples.end());
  return {samples[size_t(0.02 * double(samples.size() - 1) + 0.5)],
          samples[size_t(0.98 * double(samples.size() - 1) + 0.5)]};
}

/// Not every GDAL is built with every compression.
bool canBeWritten(const std::vector<std::string>& options) {
  const std::string start = "COMPRESS=";
  return std::all_of(options.begin(), options.end(), [&](const std::string& option) {
    return option.compare(0, start.size(), start) != 0 || gdalHas(option.substr(start.size()));
  });
}

TEST(Kinds, EachIsShownByTheRuleAndKeepsItsLookWithItsPyramid) {
  for (const Kind& kind : kinds()) {
    SCOPED_TRACE(kind.name);
    if (!canBeWritten(kind.form.options)) continue;
    const Scratch scratch;
    const std::string path = scratch / kind.file;
    writeSamples(
        path, kWidth, kHeight, kind.bands, kind.form,
        [&](int x, int y, int band) { return sampleOf(kind, x, y, band); }, inEllipse);
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    std::optional<Scale> scale = scaleSaid(*image);
    const bool wide = kind.form.type != GDT_Byte && kind.bands != 4;
    EXPECT_TRUE(scale || !wide || std::strstr(kind.name, "CMYK"));
    if (scale) {
      const Scale exact = sortedScale(path, *image);
      EXPECT_NEAR(scale->low, exact.low, std::fabs(exact.low) * 1e-5 + 1e-9);
      EXPECT_NEAR(scale->high, exact.high, std::fabs(exact.high) * 1e-5 + 1e-9);
      scale = exact;
    }
    const Picture shown = readAll(*image);
    EXPECT_LE(largestDifference(shown, pixelsByRule(path, scale.value_or(Scale{}))), scale ? 1 : 0);
    ASSERT_TRUE(buildFor(path));
    EXPECT_EQ(fileKind(path + (kind.plain ? ".ovr" : ".rgb.ovr")), FileKind::kRegular);
    EXPECT_EQ(fileKind(path + (kind.plain ? ".rgb.ovr" : ".ovr")), FileKind::kMissing);
    const auto again = openImage(path);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->levelCount(), 2U);
    EXPECT_TRUE(again->hasPyramid({scratch.folder(), ""}));
    EXPECT_EQ(largestDifference(readAll(*again), shown), 0);
    EXPECT_EQ(again->notes(), image->notes());
  }
}

TEST(Kinds, ConstantImagesAreMidGrayAndEmptyOnesNothing) {
  const Scratch scratch;
  const auto centre = [&](GDALDataType type, double value, std::optional<double> nodata) {
    SampleForm form{"GTiff", type, {}, {}, nodata, {}, {}};
    writeSamples(
        scratch / "a.tif", 50, 40, 1, form, [&](int, int, int) { return value; }, inEllipse);
    const auto image = openImage(scratch / "a.tif");
    return image ? int(readAll(*image).at(25, 20)[1]) : -1;
  };
  EXPECT_EQ(centre(GDT_UInt16, 700, {}), 128);
  EXPECT_EQ(centre(GDT_UInt16, 0, {}), 0);
  EXPECT_EQ(centre(GDT_UInt16, 65535, {}), 255);
  EXPECT_EQ(centre(GDT_Float32, 0, {}), 128);
  EXPECT_EQ(centre(GDT_Float64, -1e-300, {}), 128);
  EXPECT_EQ(centre(GDT_Float32, std::nan(""), {}), 0);
  EXPECT_EQ(centre(GDT_Int16, -5, -5), 0);
}

TEST(Kinds, ColoursMultipliedByAlphaAreDividedAgain) {
  const Scratch scratch;
  const double colour[3] = {200, 100, 50};
  const auto alphaOf = [](int x) { return std::min(255, x); };
  for (const GDALDataType type : {GDT_Byte, GDT_UInt16}) {
    const double unit = type == GDT_Byte ? 1 : 257;
    SampleForm form{"GTiff", type, {"ALPHA=PREMULTIPLIED", "PHOTOMETRIC=RGB"}, {}, {}, {}, {}};
    writeSamples(
        scratch / "a.tif", kWidth, kHeight, 4, form,
        [&](int x, int, int band) {
          const double alpha = alphaOf(x);
          return band == 3 ? unit * alpha : std::round(unit * colour[band] * alpha / 255);
        },
        inEllipse);
    const auto image = openImage(scratch / "a.tif");
    ASSERT_TRUE(image);
    const Picture shown = readAll(*image);
    EXPECT_EQ(shown.at(0, 5)[0], 0);
    for (int x = 1; x < kWidth && type == GDT_Byte; ++x) {
      for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(shown.at(x, 5)[c], colour[c], 0.5 * 255 / alphaOf(x) + 0.5) << x;
    }
    // Scaled: the same colour all over.
    for (int x = 10; x < kWidth && type == GDT_UInt16; ++x) {
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(shown.at(x, 5)[c], shown.at(300, 5)[c], 1) << x;
    }
  }
}

TEST(Kinds, JpgWithALargeMaskIsWhole) {
  const Scratch scratch;
  const std::string path = scratch / "a.jpg";
  uint32_t seed = 1;
  const auto random = [&](int, int) {
    return ((seed = seed * 1664525 + 1013904223) >> 20) % 2 == 0;
  };
  writeSamples(
      path, 1500, 1000, 1, {"JPEG", GDT_Byte, {}, {}, {}, MaskKind::kInside, {}},
      [](int x, int y, int) { return 100 + x / 20 + y / 30; }, random);
  const auto image = openImage(path);
  ASSERT_TRUE(image);
  EXPECT_EQ(largestDifference(readAll(*image), pixelsByRule(path)), 0);
}

TEST(Kinds, NotesSayWhatIsOdd) {
  const Scratch scratch;
  const auto note = [&](GDALDataType type, int bands, double high) {
    const Kind kind{"", "", bands, 0, high, {}, false, false};
    SampleForm form{"GTiff", type, {"PHOTOMETRIC=MINISBLACK"}, {}, {}, {}, {}};
    writeSamples(
        scratch / "a.tif", kWidth, kHeight, bands, form,
        [&](int x, int y, int band) { return sampleOf(kind, x, y, band); }, inEllipse);
    const auto image = openImage(scratch / "a.tif");
    return !image || image->notes().empty() ? std::string() : image->notes()[0];
  };
  EXPECT_EQ(note(GDT_Byte, 1, 255), "");
  EXPECT_EQ(note(GDT_Byte, 3, 255), "");
  EXPECT_EQ(note(GDT_Byte, 2, 255), "has 2 bands; the first is shown");
  EXPECT_NE(note(GDT_Byte, 6, 255).find("6 bands"), std::string::npos);
  EXPECT_EQ(note(GDT_UInt16, 1, 0), "seems to hold nothing but nodata");
  EXPECT_EQ(note(GDT_UInt16, 1, 9000).compare(0, 21, "scaled from 16 bits ("), 0);
  EXPECT_EQ(note(GDT_Int16, 1, 9000).compare(0, 28, "scaled from signed 16 bits ("), 0);
  EXPECT_EQ(note(GDT_Float32, 1, 9).compare(0, 35, "scaled from floating-point samples "), 0);
}

struct Overviews {
  const char* name;
  const char* file;
  int bands;
  double high;
  SampleForm form;
  bool alpha;
  bool inside;
  const char* resampling;
};

TEST(Kinds, OverviewsOfOtherProgramsAreReadAsTheImageIs) {
  const SampleForm rgba{"GTiff", GDT_Byte, {}, kRgba, {}, {}, {}};
  const SampleForm gray16{"GTiff", GDT_UInt16, {}, {}, {}, {}, {}};
  const SampleForm nodata{"GTiff", GDT_Byte, {}, {}, 77.0, {}, {}};
  const SampleForm indexed{"GTiff", GDT_Byte, {}, {}, {}, {}, palette(false)};
  const SampleForm inner{"GTiff", GDT_Byte, {"TILED=YES"}, kRgba, {}, MaskKind::kInside, {}};
  const SampleForm beside{"GTiff", GDT_Byte, {}, kRgba, {}, MaskKind::kBeside, {}};
  const SampleForm imagine{"HFA", GDT_Int16, {}, {}, {}, {}, {}};
  const Overviews cases[] = {
      {"RGBA inside", "a.tif", 4, 255, rgba, true, true, "AVERAGE"},
      {"RGBA beside", "a.tif", 4, 255, rgba, true, false, "AVERAGE"},
      {"16 bits inside", "a.tif", 1, 60000, gray16, false, true, "AVERAGE"},
      {"16 bits beside", "a.tif", 1, 60000, gray16, false, false, "NEAREST"},
      {"nodata beside", "a.tif", 1, 255, nodata, false, false, "AVERAGE"},
      {"palette inside", "a.tif", 1, 199, indexed, false, true, "NEAREST"},
      {"palette beside", "a.tif", 1, 199, indexed, false, false, "NEAREST"},
      {"mask inside", "a.tif", 3, 255, inner, false, true, "AVERAGE"},
      {"mask beside", "a.tif", 3, 255, beside, false, false, "AVERAGE"},
      {"IMG 16 bits inside", "a.img", 1, 30000, imagine, false, true, "AVERAGE"},
      {"IMG 16 bits beside", "a.img", 1, 30000, imagine, false, false, "AVERAGE"},
  };
  for (const Overviews& c : cases) {
    SCOPED_TRACE(c.name);
    const Scratch scratch;
    const std::string path = scratch / c.file;
    const Kind kind{"", "", c.bands, 0, c.high, c.form, c.alpha, false};
    writeSamples(
        path, 2 * kWidth, 2 * kHeight, c.bands, c.form,
        [&](int x, int y, int band) { return sampleOf(kind, x / 2, y / 2, band); },
        [](int x, int y) { return inEllipse(x / 2, y / 2); });
    auto* dataset =
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | (c.inside ? GDAL_OF_UPDATE : 0));
    ASSERT_NE(dataset, nullptr);
    int factors[1] = {2};
    CPLSetThreadLocalConfigOption("HFA_USE_RRD", c.inside ? "YES" : "NO");
    EXPECT_EQ(dataset->BuildOverviews(c.resampling, 1, factors, 0, nullptr, nullptr, nullptr),
              CE_None);
    CPLSetThreadLocalConfigOption("HFA_USE_RRD", nullptr);
    GDALClose(dataset);
    const auto image = openImage(path);
    ASSERT_TRUE(image);
    EXPECT_TRUE(image->hasPyramid({scratch.folder(), ""}));
    EXPECT_EQ(image->levelCount(), 2U);
    const Picture half = readWindow(*image, {0, 0, 2, 2, kWidth, kHeight});
    const Scale scale = scaleSaid(*image).value_or(Scale{});
    EXPECT_LE(largestDifference(half, pixelsByRule(path, scale, 0)), scaleSaid(*image) ? 1 : 0);
  }
}

TEST(Kinds, APyramidDoesNotOutliveTheMaskItWasMadeWith) {
  const Scratch scratch;
  const std::string path = scratch / "a.tif";
  SampleForm form{"GTiff", GDT_Byte, {}, kRgba, {}, MaskKind::kBeside, {}};
  const Kind kind{"", "", 3, 0, 255, form, false, false};
  const auto sample = [&](int x, int y, int band) { return sampleOf(kind, x, y, band); };
  writeSamples(path, kWidth, kHeight, 3, form, sample, inEllipse);
  ASSERT_TRUE(buildFor(path));
  EXPECT_TRUE(openImage(path)->hasPyramid({scratch.folder(), ""}));
  ASSERT_TRUE(removeAll(path + ".msk"));
  EXPECT_FALSE(openImage(path)->hasPyramid({scratch.folder(), ""})) << "the mask is gone";
  std::string note;
  ASSERT_TRUE(openImage(path)->buildPyramid({scratch.folder(), ""}, nullptr, note));
  EXPECT_EQ(note, "") << "the plain image had no pyramid before";
  EXPECT_TRUE(openImage(path)->hasPyramid({scratch.folder(), ""}));
  writeText(path + ".ovr", "no pyramid");
  ASSERT_TRUE(openImage(path)->buildPyramid({scratch.folder(), ""}, nullptr, note));
  EXPECT_NE(note.find("built again"), std::string::npos);
}

}  // namespace
}  // namespace tarn::raster
