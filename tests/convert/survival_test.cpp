// What is said about an image before its conversion is said after it: asked of plain GDAL.
#include <gdal_alg.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "components/convert/converter.h"
#include "tests/raster/testimages.h"

namespace tarn::convert {
namespace {

using raster::Scratch;

struct Closer {
  void operator()(GDALDataset* dataset) const { GDALClose(GDALDataset::ToHandle(dataset)); }
};
using Dataset = std::unique_ptr<GDALDataset, Closer>;

Dataset openByGdal(const std::string& path) {
  GDALAllRegister();
  CPLPushErrorHandler(CPLQuietErrorHandler);
  Dataset opened(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
  CPLPopErrorHandler();
  return opened;
}

std::string systemText(const OGRSpatialReference* system) {
  char* text = nullptr;
  if (!system || system->exportToProj4(&text) != OGRERR_NONE) {
    CPLFree(text);
    return {};
  }
  std::string kept;
  for (const std::string& word : split(text, ' '))
    if (word.compare(0, 9, "+towgs84=") != 0) kept += word + ' ';
  CPLFree(text);
  return kept;
}

/// Everything of it that a conversion must keep, as lines.
std::vector<std::string> saidAbout(GDALDataset& d, bool pixelsToo) {
  std::vector<std::string> lines;
  double t[6] = {};
  if (d.GetGeoTransform(t) == CE_None) {
    for (const double number : t) {
      char text[64];
      std::snprintf(text, sizeof text, "transform %.9g", number);
      lines.emplace_back(text);
    }
  }
  const OGRSpatialReference* system = d.GetSpatialRef() ? d.GetSpatialRef() : d.GetGCPSpatialRef();
  lines.push_back("system " + systemText(system));
  lines.push_back("points " + std::to_string(d.GetGCPCount()));
  for (char** item = d.GetMetadata(); item && *item; ++item) {
    const std::string text = *item;
    // Empty items and what the format itself says are not the user's.
    const bool own = text.compare(0, 5, "EXIF_") == 0 || text.compare(0, 4, "TARN") == 0;
    if (!own && text.back() != '=') lines.push_back("item " + text);
  }
  for (int i = 1; pixelsToo && i <= d.GetRasterCount(); ++i) {
    GDALRasterBand& band = *d.GetRasterBand(i);
    const std::string name = "band " + std::to_string(i) + ' ';
    lines.push_back(name + GDALGetDataTypeName(band.GetRasterDataType()));
    int has = 0;
    const double nodata = band.GetNoDataValue(&has);
    if (has) lines.push_back(name + "nodata " + formatDouble(nodata));
    if (*band.GetUnitType()) lines.push_back(name + "unit " + band.GetUnitType());
    const double scale = band.GetScale(&has);
    if (has && scale != 1) lines.push_back(name + "scale " + formatDouble(scale));
    const GDALColorTable* table = band.GetColorTable();
    for (int c = 0; table && c < std::min(16, table->GetColorEntryCount()); ++c) {
      const GDALColorEntry& e = *table->GetColorEntry(c);
      lines.push_back(name + "colour " + std::to_string(e.c1) + ' ' + std::to_string(e.c2) + ' ' +
                      std::to_string(e.c3));
    }
    lines.push_back(name + "sum " +
                    std::to_string(GDALChecksumImage(GDALRasterBand::ToHandle(&band), 0, 0,
                                                     band.GetXSize(), band.GetYSize())));
  }
  return lines;
}

/// The lines of `before` that are not among those of `after`.
std::string lost(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  std::string text;
  for (const std::string& line : before) {
    if (std::find(after.begin(), after.end(), line) == after.end()) text += line + "; ";
  }
  return text;
}

struct Target {
  Format format;
  Compression compression;
  bool samples;  ///< all samples stay, not only what is said about the image
};
const Target kAllTargets[] = {{Format::kGeoTiff, Compression::kDeflate, true},
                              {Format::kCloudTiff, Compression::kZstd, true},
                              {Format::kCloudTiff, Compression::kJpeg, false},
                              {Format::kImg, Compression::kNone, true},
                              {Format::kJpeg, Compression::kNone, false}};

/// Those that this system's GDAL can write.
std::vector<Target> targets() {
  const bool zstd = raster::gdalHas("ZSTD");
  std::vector<Target> all;
  for (const Target& target : kAllTargets) {
    if (zstd || target.compression != Compression::kZstd) all.push_back(target);
  }
  return all;
}

Result<Converted> convertTo(const Target& target, const std::string& input,
                            const std::string& output) {
  Options options;
  options.format = target.format;
  options.compression = target.compression;
  options.pyramids = false;
  return convertImage(input, output, options, nullptr);
}

void writeGray(const std::string& path, GDALDataType type,
               const std::function<void(GDALDataset&)>& say) {
  GDALAllRegister();
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
  const Dataset made(driver->Create(path.c_str(), 90, 70, 1, type, nullptr));
  say(*made);
  std::vector<uint8_t> values(90 * 70);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<uint8_t>(i % 5 + 1);
  ASSERT_EQ(made->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, 90, 70, values.data(), 90, 70,
                                             GDT_Byte, 0, 0, nullptr),
            CE_None);
}

void place(GDALDataset& d, int epsg) {
  OGRSpatialReference system;
  system.importFromEPSG(epsg);
  double t[6] = {40500123.4, 0.1, 0, 3512345.6, 0, -0.1};
  d.SetSpatialRef(&system);
  d.SetGeoTransform(t);
}

TEST(Survival, OfWhatAnImageCanSay) {
  const struct {
    const char* name;
    GDALDataType type;
    std::function<void(GDALDataset&)> say;
  } kImages[] = {
      {"metadata", GDT_Byte,
       [](GDALDataset& d) {
         place(d, 4528);
         d.SetMetadataItem("SURVEYOR", "测绘院 <&>");
       }},
      {"nodata", GDT_Int16,
       [](GDALDataset& d) {
         place(d, 32650);
         d.GetRasterBand(1)->SetNoDataValue(-9999);
       }},
      {"palette", GDT_Byte,
       [](GDALDataset& d) {
         place(d, 3857);
         GDALColorTable table;
         for (short i = 0; i < 16; ++i) {
           const GDALColorEntry entry{static_cast<short>(i * 10), i, static_cast<short>(250 - i),
                                      255};
           table.SetColorEntry(i, &entry);
         }
         d.GetRasterBand(1)->SetColorTable(&table);
       }},
      {"points", GDT_Byte,
       [](GDALDataset& d) {
         OGRSpatialReference system;
         system.importFromEPSG(4528);
         GDAL_GCP points[4];
         GDALInitGCPs(4, points);
         const double corners[4][4] = {{0, 0, 40500000, 3500000},
                                       {90, 0, 40500090, 3500003},
                                       {90, 70, 40500088, 3499931},
                                       {0, 70, 40499998, 3499930}};
         for (int i = 0; i < 4; ++i) {
           points[i].dfGCPPixel = corners[i][0];
           points[i].dfGCPLine = corners[i][1];
           points[i].dfGCPX = corners[i][2];
           points[i].dfGCPY = corners[i][3];
         }
         d.SetGCPs(4, points, &system);
         GDALDeinitGCPs(4, points);
       }},
      {"rotated", GDT_Byte,
       [](GDALDataset& d) {
         double t[6] = {500000, 0.3, 0.1, 4000000, 0.1, -0.3};
         d.SetGeoTransform(t);
       }},
      {"scaled", GDT_UInt16,
       [](GDALDataset& d) {
         place(d, 4326);
         d.GetRasterBand(1)->SetUnitType("m");
       }},
  };
  for (const auto& image : kImages) {
    const Scratch scratch;
    const std::string input = scratch / (std::string(image.name) + ".tif");
    writeGray(input, image.type, image.say);
    const std::vector<std::string> before = saidAbout(*openByGdal(input), true);
    for (const Target& target : targets()) {
      const std::string output = scratch / ("out/a" + extensionFor(target.format));
      ASSERT_TRUE(removeAll(scratch / "out"));
      const auto done = convertTo(target, input, output);
      ASSERT_TRUE(done) << done.message();
      EXPECT_TRUE(done.value().notes.empty() || !target.samples) << done.value().notes.front();
      const Dataset after = openByGdal(output);
      ASSERT_TRUE(after);
      const auto said = saidAbout(*openByGdal(input), target.samples);
      EXPECT_EQ(lost(said, saidAbout(*after, true)), "") << image.name << " to " << output;
    }
  }
}

TEST(Survival, AWorldFileCountsAndIsWrittenWhereNeeded) {
  const Scratch scratch;
  raster::FileForm form;
  form.georeferenced = false;
  raster::writePicture(scratch / "a.tif", raster::smooth(100, 80, 3), form);
  raster::writeText(scratch / "a.tfw", "0.5\n0\n0\n-0.5\n40500000.25\n3500999.75\n");
  raster::writeText(
      scratch / "a.prj",
      "PROJCS[\"CGCS2000_3_Degree_GK_Zone_40\",GEOGCS[\"GCS_China_Geodetic_Coordinate_"
      "System_2000\",DATUM[\"D_China_2000\",SPHEROID[\"CGCS2000\",6378137.0,298."
      "257222101]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],"
      "PROJECTION[\"Gauss_Kruger\"],PARAMETER[\"False_Easting\",40500000.0],"
      "PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Central_Meridian\",120.0],"
      "PARAMETER[\"Scale_Factor\",1.0],PARAMETER[\"Latitude_Of_Origin\",0.0],"
      "UNIT[\"Meter\",1.0]]");
  for (const Target& target : targets()) {
    const std::string output = scratch / ("out/a" + extensionFor(target.format));
    ASSERT_TRUE(removeAll(scratch / "out"));
    ASSERT_TRUE(convertTo(target, scratch / "a.tif", output));
    const Dataset after = openByGdal(output);
    double t[6] = {};
    ASSERT_EQ(after->GetGeoTransform(t), CE_None) << output;
    EXPECT_DOUBLE_EQ(t[0], 40500000);
    EXPECT_DOUBLE_EQ(t[3], 3501000);
    EXPECT_NE(systemText(after->GetSpatialRef()).find("lon_0=120"), std::string::npos);
    const bool jpeg = target.format == Format::kJpeg;
    EXPECT_EQ(fileKind(scratch / "out/a.jgw") == FileKind::kRegular, jpeg);
    EXPECT_EQ(fileKind(scratch / "out/a.prj") == FileKind::kRegular, jpeg);
  }
  Options options;
  options.sideFiles = true;
  ASSERT_TRUE(convertImage(scratch / "a.tif", scratch / "sides/a.tif", options, nullptr));
  EXPECT_EQ(readFile(scratch / "sides/a.tfw", 1000).value(),
            "0.5\n0\n0\n-0.5\n40500000.25\n3500999.75\n");
  EXPECT_EQ(fileKind(scratch / "sides/a.prj"), FileKind::kRegular);
}

TEST(Survival, AlphaBecomesAMaskWhereAFormatHasNone) {
  const Scratch scratch;
  GDALAllRegister();
  {
    const Dataset made(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        (scratch / "a.tif").c_str(), 300, 200, 4, GDT_Byte, nullptr));
    std::vector<uint8_t> gray(300 * 200, 120), alpha(300 * 200, 255);
    for (int y = 0; y < 200; ++y) std::fill_n(alpha.begin() + y * 300, 100, uint8_t{0});
    for (int b = 1; b <= 4; ++b) {
      ASSERT_EQ(made->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, 300, 200,
                                                 b == 4 ? alpha.data() : gray.data(), 300, 200,
                                                 GDT_Byte, 0, 0, nullptr),
                CE_None);
    }
    ASSERT_EQ(made->GetRasterBand(4)->GetColorInterpretation(), GCI_AlphaBand);
  }
  for (const Target& target : targets()) {
    const std::string output = scratch / ("out/a" + extensionFor(target.format));
    ASSERT_TRUE(removeAll(scratch / "out"));
    const auto done = convertTo(target, scratch / "a.tif", output);
    ASSERT_TRUE(done) << done.message();
    const Dataset after = openByGdal(output);
    ASSERT_TRUE(after);
    std::vector<uint8_t> mask(300 * 200);
    ASSERT_EQ(after->GetRasterBand(1)->GetMaskBand()->RasterIO(GF_Read, 0, 0, 300, 200, mask.data(),
                                                               300, 200, GDT_Byte, 0, 0, nullptr),
              CE_None);
    EXPECT_EQ(mask[50], 0) << output;
    EXPECT_EQ(mask[150], 255) << output;
  }
}

bool isImage(const std::filesystem::path& path) {
  const std::string ending = toLower(path.extension().u8string());
  return ending == ".tif" || ending == ".tiff" || ending == ".img" || ending == ".jpg";
}

TEST(Survival, OfRealFiles) {
  if (fileKind(TARN_DATA_DIR) != FileKind::kFolder)
    GTEST_SKIP() << "no real files in " << TARN_DATA_DIR;
  // What of them their formats cannot hold, and files whose position is not where GDAL looks.
  const char* kOther[] = {"f2r23.tif", "byte_inconsistent_georef.tif", "byte_nogeoref.tif",
                          "rgbsmall_cmyk.tif", "unsupported-srs.tif"};
  const std::vector<Target> all = targets();
  size_t converted = 0, refused = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(TARN_DATA_DIR)) {
    const std::string input = entry.path().generic_u8string();
    if (!entry.is_regular_file() || !isImage(entry.path())) continue;
    if (std::find(std::begin(kOther), std::end(kOther), nameOf(input)) != std::end(kOther))
      continue;
    const Scratch scratch;
    const Target& target = all[converted % all.size()];
    const std::string output = scratch / ("a" + extensionFor(target.format));
    const auto done = convertTo(target, input, output);
    if (!done) {
      ++refused;
      EXPECT_NE(done.message().find(input), std::string::npos);
      EXPECT_TRUE(listFolder(scratch.folder()).empty()) << input;
      continue;
    }
    ++converted;
    const Dataset before = openByGdal(input), after = openByGdal(output);
    if (!before) continue;
    ASSERT_TRUE(after) << output;
    const bool sameBands = before->GetRasterCount() == after->GetRasterCount();
    EXPECT_EQ(lost(saidAbout(*before, target.samples && sameBands), saidAbout(*after, true)), "")
        << input << " to " << output;
  }
  EXPECT_GT(converted, refused * 3);
  std::printf("%zu real files converted, %zu refused\n", converted, refused);
}

}  // namespace
}  // namespace tarn::convert
