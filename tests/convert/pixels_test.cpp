// What a conversion writes, read back by plain GDAL.
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "base/file.h"
#include "base/path.h"
#include "components/convert/converter.h"
#include "tests/raster/testimages.h"

namespace tarn::convert {
namespace {

using raster::largestDifference;
using raster::Picture;
using raster::readByGdal;
using raster::Scratch;
using raster::smooth;
using raster::texture;
using raster::writePicture;

struct Closer {
  void operator()(GDALDataset* dataset) const { GDALClose(GDALDataset::ToHandle(dataset)); }
};
std::unique_ptr<GDALDataset, Closer> openByGdal(const std::string& path) {
  GDALAllRegister();
  return std::unique_ptr<GDALDataset, Closer>(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
}

Options optionsOf(Format format, Compression compression, const std::string& folder) {
  Options options;
  options.format = format;
  options.compression = compression;
  options.quality = 90;
  options.folder = folder;
  return options;
}

struct Case {
  Format format;
  Compression compression;
  int tolerance;
  const char* compressionName;
};
const Case kAllCases[] = {
    {Format::kGeoTiff, Compression::kNone, 0, nullptr},
    {Format::kGeoTiff, Compression::kDeflate, 0, "DEFLATE"},
    {Format::kGeoTiff, Compression::kLzw, 0, "LZW"},
    {Format::kGeoTiff, Compression::kZstd, 0, "ZSTD"},
    {Format::kGeoTiff, Compression::kJpeg, 12, "JPEG"},
    {Format::kCloudTiff, Compression::kNone, 0, nullptr},
    {Format::kCloudTiff, Compression::kDeflate, 0, "DEFLATE"},
    {Format::kCloudTiff, Compression::kLzw, 0, "LZW"},
    {Format::kCloudTiff, Compression::kZstd, 0, "ZSTD"},
    {Format::kCloudTiff, Compression::kJpeg, 12, "JPEG"},
    {Format::kImg, Compression::kNone, 0, nullptr},
    {Format::kJpeg, Compression::kNone, 12, nullptr},
};

/// Those that this system's GDAL can write.
std::vector<Case> cases() {
  const bool zstd = raster::gdalHas("ZSTD");
  std::vector<Case> all;
  for (const Case& c : kAllCases) {
    if (zstd || c.compression != Compression::kZstd) all.push_back(c);
  }
  return all;
}

TEST(ConvertedPixels, AreThoseOfTheImageInEveryFormat) {
  for (const Case& c : cases()) {
    for (const int channels : {1, 3}) {
      const Scratch scratch;
      // Odd sizes: edge tiles in both directions; a lossless form gets noise.
      const Picture picture =
          c.tolerance == 0 ? texture(1301, 777, channels) : smooth(1301, 777, channels);
      writePicture(scratch / "a.tif", picture);
      const std::string output = scratch / ("out/a" + extensionFor(c.format));
      const auto done = convertImage(scratch / "a.tif", output,
                                     optionsOf(c.format, c.compression, scratch / "out"), nullptr);
      ASSERT_TRUE(done) << done.message();
      EXPECT_LE(largestDifference(readByGdal(output), picture), c.tolerance) << output;
      const auto dataset = openByGdal(output);
      ASSERT_TRUE(dataset);
      EXPECT_EQ(dataset->GetRasterCount(), channels);
      const char* name = dataset->GetMetadataItem("COMPRESSION", "IMAGE_STRUCTURE");
      if (c.compressionName) {
        ASSERT_TRUE(name);
        EXPECT_NE(std::string(name).find(c.compressionName), std::string::npos);
      } else if (c.format != Format::kJpeg) {
        EXPECT_FALSE(name);
      }
      // Levels down to one tile, inside the file or beside it.
      EXPECT_EQ(dataset->GetRasterBand(1)->GetOverviewCount(), 3);
      const Picture half = readByGdal(output, 0);
      // GDAL's own builder rounds down.
      EXPECT_NEAR(half.width, 651, 1);
      EXPECT_NEAR(half.height, 389, 1);
    }
  }
}

/// Place of a tile in the file; 0 for one that is not there.
uint64_t placeOf(GDALRasterBand& band, int column, int row) {
  const std::string item = "BLOCK_OFFSET_" + std::to_string(column) + "_" + std::to_string(row);
  const char* text = band.GetMetadataItem(item.c_str(), "TIFF");
  return text ? std::strtoull(text, nullptr, 10) : 0;
}

TEST(ConvertedPixels, CloudOptimisedFilesHaveTheirOverviewsFirst) {
  for (const Compression compression :
       {Compression::kNone, Compression::kJpeg, Compression::kZstd}) {
    if (compression == Compression::kZstd && !raster::gdalHas("ZSTD")) continue;
    const Scratch scratch;
    writePicture(scratch / "a.tif", smooth(2100, 1500, 3));
    const std::string output = scratch / "b.tif";
    ASSERT_TRUE(convertImage(scratch / "a.tif", output,
                             optionsOf(Format::kCloudTiff, compression, {}), nullptr));
    const auto dataset = openByGdal(output);
    ASSERT_TRUE(dataset);
    EXPECT_STREQ(dataset->GetMetadataItem("LAYOUT", "IMAGE_STRUCTURE"), "COG");
    const char* directory = dataset->GetRasterBand(1)->GetMetadataItem("IFD_OFFSET", "TIFF");
    ASSERT_TRUE(directory);
    EXPECT_LT(std::atoi(directory), 400) << "directories stand at the start";
    uint64_t end = 0;
    for (int level = dataset->GetRasterBand(1)->GetOverviewCount() - 1; level >= -1; --level) {
      GDALRasterBand* band = dataset->GetRasterBand(1);
      if (level >= 0) band = band->GetOverview(level);
      const int columns = (band->GetXSize() + 255) / 256, rows = (band->GetYSize() + 255) / 256;
      for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
          const uint64_t place = placeOf(*band, column, row);
          EXPECT_GT(place, end) << "level " << level << " tile " << column << ' ' << row;
          end = place;
        }
      }
    }
    EXPECT_EQ(fileKind(output + ".tiles"), FileKind::kMissing);
  }
}

TEST(ConvertedPixels, WithoutPyramidsThereIsOnePicture) {
  for (const Format format : {Format::kGeoTiff, Format::kImg, Format::kJpeg}) {
    const Scratch scratch;
    writePicture(scratch / "a.tif", smooth(900, 700, 3));
    Options options = optionsOf(format, Compression::kNone, {});
    options.pyramids = false;
    const std::string output = scratch / ("b" + extensionFor(format));
    ASSERT_TRUE(convertImage(scratch / "a.tif", output, options, nullptr));
    // A JPEG decodes to smaller sizes by itself.
    if (format != Format::kJpeg) {
      EXPECT_EQ(openByGdal(output)->GetRasterBand(1)->GetOverviewCount(), 0);
    }
    EXPECT_EQ(fileKind(output + ".ovr"), FileKind::kMissing);
  }
}

/// A file of one sample type with `bands` ramps.
void writeRamps(const std::string& path, GDALDataType type, int bands, double from, double step) {
  GDALAllRegister();
  constexpr int kWidth = 300, kHeight = 200;
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
  const std::unique_ptr<GDALDataset, Closer> made(
      driver->Create(path.c_str(), kWidth, kHeight, bands, type, nullptr));
  for (int b = 1; b <= bands; ++b) {
    std::vector<double> values;
    for (int i = 0; i < kWidth * kHeight; ++i) values.push_back(from + step * ((i * b) % 9973));
    ASSERT_EQ(made->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, kWidth, kHeight, values.data(),
                                               kWidth, kHeight, GDT_Float64, 0, 0, nullptr),
              CE_None);
  }
}

std::vector<double> valuesOf(const std::string& path, int band) {
  const auto dataset = openByGdal(path);
  std::vector<double> values(300 * 200);
  if (!dataset || dataset->GetRasterCount() < band) return {};
  EXPECT_EQ(dataset->GetRasterBand(band)->RasterIO(GF_Read, 0, 0, 300, 200, values.data(), 300, 200,
                                                   GDT_Float64, 0, 0, nullptr),
            CE_None);
  return values;
}

TEST(ConvertedPixels, SamplesOfEveryKindStayAsTheyAre) {
  const struct {
    GDALDataType type;
    double from, step;
  } kKinds[] = {{GDT_UInt16, 100, 5},
                {GDT_Int16, -20000, 4},
                {GDT_UInt32, 70000, 1000},
                {GDT_Float32, -1.5, 0.25},
                {GDT_Float64, 1e9, 1e-3}};
  for (const auto& kind : kKinds) {
    for (const Case& c : cases()) {
      if (c.tolerance > 0) continue;
      const Scratch scratch;
      writeRamps(scratch / "a.tif", kind.type, 4, kind.from, kind.step);
      Options options = optionsOf(c.format, c.compression, {});
      options.bands = {4, 2};
      const std::string output = scratch / ("b" + extensionFor(c.format));
      const auto done = convertImage(scratch / "a.tif", output, options, nullptr);
      ASSERT_TRUE(done) << done.message();
      EXPECT_EQ(openByGdal(output)->GetRasterBand(1)->GetRasterDataType(), kind.type);
      EXPECT_EQ(openByGdal(output)->GetRasterCount(), 2);
      EXPECT_EQ(valuesOf(output, 1), valuesOf(scratch / "a.tif", 4));
      EXPECT_EQ(valuesOf(output, 2), valuesOf(scratch / "a.tif", 2));
    }
  }
}

TEST(ConvertedPixels, EightBitsAreThoseOfTheScreen) {
  const Scratch scratch;
  writeRamps(scratch / "a.tif", GDT_UInt16, 4, 100, 5);
  const auto shown = raster::RasterImage::open(scratch / "a.tif", {{}, false, {4, 1, 2}});
  ASSERT_TRUE(shown);
  const Picture expected = raster::readAll(*shown.value());
  for (const Case& c : cases()) {
    Options options = optionsOf(c.format, c.compression, {});
    options.pixels = Pixels::kShown;
    options.bands = {4, 1, 2};
    options.existing = Existing::kOverwrite;
    const std::string output = scratch / ("b" + extensionFor(c.format));
    const auto done = convertImage(scratch / "a.tif", output, options, nullptr);
    ASSERT_TRUE(done) << done.message();
    // The ramps are steep; JPEG smears them.
    EXPECT_LE(largestDifference(readByGdal(output), expected), c.tolerance == 0 ? 0 : 255)
        << output;
    EXPECT_EQ(openByGdal(output)->GetRasterCount(), 3);
  }
}

}  // namespace
}  // namespace tarn::convert
