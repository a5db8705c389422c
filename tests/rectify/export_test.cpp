// Exported images as other programs find them.
#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <fstream>
#include <memory>

#include "base/file.h"
#include "components/raster/exportform.h"
#include "components/raster/tilecache.h"
#include "tests/rectify/fixture.h"
#include "tests/support/system.h"

namespace tarn::rectify {
namespace {

using test::recorded;
using ::testing::HasSubstr;

constexpr double kLeft = 440000, kTop = 4400000, kPixel = 0.5;

struct Closer {
  void operator()(GDALDataset* d) const { GDALClose(d); }
};
using Dataset = std::unique_ptr<GDALDataset, Closer>;

Dataset openByGdal(const std::string& path) {
  GDALAllRegister();
  return Dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
}

/// All samples, band after band.
std::vector<double> samplesOf(GDALDataset& d) {
  std::vector<double> all;
  for (int b = 1; b <= d.GetRasterCount(); ++b) {
    std::vector<double> band(static_cast<size_t>(d.GetRasterXSize()) * d.GetRasterYSize());
    EXPECT_EQ(d.GetRasterBand(b)->RasterIO(GF_Read, 0, 0, d.GetRasterXSize(), d.GetRasterYSize(),
                                           band.data(), d.GetRasterXSize(), d.GetRasterYSize(),
                                           GDT_Float64, 0, 0, nullptr),
              CE_None);
    all.insert(all.end(), band.begin(), band.end());
  }
  return all;
}

struct Kind {
  const char* name;
  const char* driver;
  GDALDataType type;
  int bands;
  double nodata;  // below -1e30: none
  bool palette;
  const char* option;
};

/// An image whose sample at (x, y) of band b is a plane that every type holds, and never 0.
std::string writeKind(const raster::Scratch& scratch, const Kind& kind, int width, int height) {
  GDALAllRegister();
  const std::string path =
      scratch / (std::string(kind.name) + (std::string(kind.driver) == "HFA" ? ".img" : ".tif"));
  char* options[] = {const_cast<char*>(kind.option), nullptr};
  const Dataset d(GetGDALDriverManager()
                      ->GetDriverByName(kind.driver)
                      ->Create(path.c_str(), width, height, kind.bands, kind.type,
                               kind.option ? options : nullptr));
  double transform[6] = {kLeft, kPixel, 0, kTop, 0, -kPixel};
  d->SetGeoTransform(transform);
  OGRSpatialReference system;
  system.importFromEPSG(32650);
  d->SetSpatialRef(&system);
  if (kind.palette) {
    GDALColorTable table;
    for (short i = 0; i < 200; ++i) {
      const GDALColorEntry entry{i, static_cast<short>(255 - i), 7, 255};
      table.SetColorEntry(i, &entry);
    }
    d->GetRasterBand(1)->SetColorTable(&table);
  }
  for (int b = 1; b <= kind.bands; ++b) {
    if (kind.nodata > -1e30) d->GetRasterBand(b)->SetNoDataValue(kind.nodata);
    std::vector<double> band;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) band.push_back(1 + b + 0.5 * x + 0.25 * y);
    EXPECT_EQ(d->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, width, height, band.data(), width,
                                            height, GDT_Float64, 0, 0, nullptr),
              CE_None);
  }
  return path;
}

constexpr double kNone = -1e300;

const Kind kKinds[] = {{"gray8", "GTiff", GDT_Byte, 1, kNone, false, nullptr},
                       {"rgb8", "GTiff", GDT_Byte, 3, kNone, false, "TILED=YES"},
                       {"rgb8band", "GTiff", GDT_Byte, 3, 255, false, "INTERLEAVE=BAND"},
                       {"palette", "GTiff", GDT_Byte, 1, kNone, true, nullptr},
                       {"uint16", "GTiff", GDT_UInt16, 4, kNone, false, "COMPRESS=DEFLATE"},
                       {"int16", "HFA", GDT_Int16, 1, -32768, false, nullptr},
                       {"int32", "GTiff", GDT_Int32, 2, kNone, false, nullptr},
                       {"float", "GTiff", GDT_Float32, 1, -9999, false, nullptr},
                       {"double", "HFA", GDT_Float64, 2, kNone, false, nullptr}};

class Export : public RectifyTest {};

TEST_F(Export, AMovedImageKeepsSamplesTypesAndBands) {
  for (const Kind& kind : kKinds) {
    const std::string path = writeKind(scratch_, kind, 300, 170);
    const Dataset source = openByGdal(path);
    for (const char* format : {"TIF", "img"}) {
      SCOPED_TRACE(std::string(kind.name) + " " + format);
      const auto image = open(path);
      image->imageQueryC()->move(10, -20);
      image->applyPlacement();
      const std::string target =
          scratch_ / (std::string("out ") + kind.name + (format[0] == 'T' ? ".tif" : ".img"));
      ASSERT_TRUE(image->exportPrepare(target, format));
      EXPECT_EQ(fileKind(target), FileKind::kMissing);
      ASSERT_TRUE(image->exportImage(target, format))
          << (recorded().messages.empty() ? "" : recorded().messages.back());
      const Dataset d = openByGdal(target);
      ASSERT_TRUE(d);
      EXPECT_STREQ(d->GetDriverName(), format[0] == 'T' ? "GTiff" : "HFA");
      ASSERT_EQ(d->GetRasterXSize(), 300);
      ASSERT_EQ(d->GetRasterYSize(), 170);
      ASSERT_EQ(d->GetRasterCount(), kind.bands);
      EXPECT_EQ(d->GetRasterBand(1)->GetRasterDataType(), kind.type);
      EXPECT_EQ(d->GetRasterBand(1)->GetColorTable() != nullptr, kind.palette);
      int width = 0, height = 0;
      d->GetRasterBand(1)->GetBlockSize(&width, &height);
      EXPECT_EQ(width, format[0] == 'T' ? 256 : 64);
      double t[6] = {};
      ASSERT_EQ(d->GetGeoTransform(t), CE_None);
      EXPECT_NEAR(t[0], kLeft + 10, 1e-9);
      EXPECT_NEAR(t[3], kTop - 20, 1e-9);
      EXPECT_EQ(t[1], kPixel);
      EXPECT_EQ(t[2], 0);
      ASSERT_TRUE(d->GetSpatialRef());
      EXPECT_TRUE(d->GetSpatialRef()->IsSame(source->GetSpatialRef()));
      EXPECT_EQ(samplesOf(*d), samplesOf(*source));
      const std::string stem = scratch_ / (std::string("out ") + kind.name);
      auto world = readFile(stem + (format[0] == 'T' ? ".tfw" : ".igw"), 1000);
      ASSERT_TRUE(world) << world.message();
      EXPECT_EQ(world.value().substr(0, 4), "0.5\n");
      EXPECT_EQ(fileKind(stem + ".prj"), FileKind::kRegular);
    }
  }
  EXPECT_TRUE(recorded().messages.empty() ||
              recorded().messages[0].find("out") == std::string::npos);
}

TEST_F(Export, WarpedSamplesAreWhereTheyBelongAndOutsideIsNodata) {
  const auto map = [](double x, double y, double& X, double& Y) {
    const double u = (x - kLeft) / 150, v = (y - kTop) / 150;
    X = 500000 + 140 * u - 30 * v + 6 * u * u + 4 * u * v;
    Y = 4000000 + 35 * u + 150 * v - 5 * v * v;
  };
  for (const Kind& kind : kKinds) {
    const std::string path = writeKind(scratch_, kind, 300, 300);
    for (const int resampling : {0, 1}) {
      SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(resampling));
      const auto image = open(path);
      rectify(*image.get(), 1, pointsOver(*image.get(), 4, map));
      image->setExportResampling(resampling);
      const std::string target = scratch_ / "warped.tif";
      ASSERT_TRUE(image->exportImage(target, "tif"));
      const Dataset d = openByGdal(target);
      ASSERT_TRUE(d);
      double t[6] = {};
      d->GetGeoTransform(t);
      const int width = d->GetRasterXSize(), height = d->GetRasterYSize();
      const std::vector<double> samples = samplesOf(*d);
      int has = 0;
      const double nodata = d->GetRasterBand(1)->GetNoDataValue(&has);
      ASSERT_TRUE(has);
      double most = 0;
      int inside = 0, outside = 0, wrong = 0;
      // Types of whole numbers round the plane down when it is written, and once more.
      const bool isWhole = kind.type != GDT_Float32 && kind.type != GDT_Float64;
      const double allowed =
          (resampling == 1 && !kind.palette ? 0.07 : 0.45) + (isWhole ? 1.01 : 0.0);
      for (int r = 0; r < height; ++r) {
        for (int c = 0; c < width; ++c) {
          double column = 0, row = 0;
          const bool found =
              image->pixelOfDrawing(t[0] + (c + 0.5) * t[1], t[3] + (r + 0.5) * t[5], column, row);
          const bool shows = found && column > 0.6 && row > 0.6 && column < 299.4 && row < 299.4;
          const bool hides = !found || column < -0.2 || row < -0.2 || column > 300.2 || row > 300.2;
          const double sample = samples[static_cast<size_t>(r) * width + c];
          if (hides) {
            ++outside;
            wrong += sample == nodata ? 0 : 1;
          } else if (shows) {
            ++inside;
            const double belongs = 2 + 0.5 * (column - 0.5) + 0.25 * (row - 0.5);
            most = std::max(most, std::fabs(sample - belongs));
          }
        }
      }
      EXPECT_GT(inside, 80000);
      EXPECT_GT(outside, 5000);
      EXPECT_EQ(wrong, 0);
      EXPECT_LT(most, allowed);
    }
  }
}

TEST_F(Export, AlphaSourceNodataAndPresentationsOfTheirOwn) {
  // Alpha: nothing is nodata, outside it is 0. A rotated image: its own samples, not presented
  // ones.
  GDALAllRegister();
  const std::string path = scratch_ / "rotated.tif";
  {
    const Dataset d(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        path.c_str(), 120, 80, 4, GDT_UInt16, nullptr));
    double transform[6] = {kLeft, 0.4, 0.3, kTop, 0.3, -0.4};
    d->SetGeoTransform(transform);
    d->GetRasterBand(4)->SetColorInterpretation(GCI_AlphaBand);
    for (int b = 1; b <= 4; ++b) d->GetRasterBand(b)->Fill(b == 4 ? 65535 : 1000.0 * b + 500);
  }
  const auto image = open(path);
  const std::string target = scratch_ / "straight.tif";
  ASSERT_TRUE(image->exportImage(target, "tif"));
  const Dataset d = openByGdal(target);
  ASSERT_TRUE(d);
  int has = 1;
  d->GetRasterBand(1)->GetNoDataValue(&has);
  EXPECT_FALSE(has);
  EXPECT_EQ(d->GetRasterBand(4)->GetColorInterpretation(), GCI_AlphaBand);
  const std::vector<double> samples = samplesOf(*d);
  const size_t band = samples.size() / 4;
  size_t shown = 0;
  for (size_t i = 0; i < band; ++i) {
    const bool shows = samples[3 * band + i] == 65535;
    shown += shows ? 1 : 0;
    EXPECT_EQ(samples[i], shows ? 1500 : 0);
    EXPECT_EQ(samples[2 * band + i], shows ? 3500 : 0);
  }
  EXPECT_NEAR(static_cast<double>(shown), 120 * 80, 120);
}

TEST_F(Export, WhatIsRefusedOrFailsLeavesTheOldFile) {
  const std::string path = writeKind(scratch_, kKinds[1], 900, 700);
  const std::string target = scratch_ / "old.tif", before = "what stood here";
  raster::writeText(target, before);
  const auto image = open(path);
  image->imageQueryC()->rotate(0.3, kLeft, kTop);
  image->applyPlacement();
  const auto untouched = [&] {
    auto text = readFile(target, 1000);
    return text && text.value() == before;
  };
  const auto refused = [&](const std::string& to, const char* format, const char* why) {
    recorded().messages.clear();
    EXPECT_FALSE(image->exportImage(to, format)) << to;
    ASSERT_EQ(recorded().messages.size(), 1U) << to;
    EXPECT_THAT(recorded().messages[0], HasSubstr(to));
    EXPECT_THAT(recorded().messages[0], HasSubstr(why));
  };
  const auto original = readFile(path, 10 << 20);
  const std::string link = scratch_ / "link.tif";
  refused(path, "tif", "is the image itself");
  if (tarn::test::makeLink(path, link)) refused(link, "tif", "is the image itself");
  refused(scratch_ / "x.jpg", "jpg", "as TIFF (.tif, .tiff) or IMG (.img) only");
  refused(scratch_ / "none/x.tif", "tif", "folder is not there");
  EXPECT_EQ(readFile(path, 10 << 20).value(), original.value());

  if (const tarn::test::FileSizeLimit full(300000); full.holds()) {
    refused(target, "tif", "cannot be");
    refused(target, "img", "cannot be");
  }
  EXPECT_TRUE(untouched());
  recorded().cancel = true;
  refused(target, "tif", "was stopped");
  recorded().cancel = false;
  EXPECT_TRUE(untouched());
  // The image is gone while it is open.
  ASSERT_EQ(std::rename(path.c_str(), (scratch_ / "elsewhere.tif").c_str()), 0);
  recorded().messages.clear();
  EXPECT_FALSE(image->exportImage(target, "tif"));
  EXPECT_THAT(recorded().messages.back(), HasSubstr("is not there any more"));
  EXPECT_TRUE(untouched());
  for (const std::string& name : listFolder(scratch_.folder()))
    EXPECT_EQ(name.find(".tarnbuild"), std::string::npos) << name;
  ASSERT_EQ(std::rename((scratch_ / "elsewhere.tif").c_str(), path.c_str()), 0);
  // And then it works, over the old file and what was beside it.
  raster::writeText(target + ".ovr", "stale");
  const uint64_t cache = raster::TileCache::shared().limit();
  ASSERT_TRUE(image->exportImage(target, "tif"));
  EXPECT_EQ(raster::TileCache::shared().limit(), cache);
  EXPECT_EQ(fileKind(target + ".ovr"), FileKind::kMissing);
  EXPECT_TRUE(openByGdal(target));
}

// 37836 squared pixels of three bytes are 148² tiles of 256², that is 4.0 GiB and a little.
TEST_F(Export, IsABigTiffWhereOffsetsOfThirtyTwoBitsEnd) {
  const Dataset source = openByGdal(writeKind(scratch_, kKinds[1], 30, 20));
  const Dataset wide = openByGdal(writeKind(scratch_, kKinds[8], 30, 20));
  const auto bigOf = [](GDALDataset& d, int side) {
    raster::ExportRequest request;
    request.target = "x.tif";
    request.grid.transform = {0, 1, 0, 0, 0, -1};
    request.grid.width = request.grid.height = side;
    auto form = raster::decideExportForm(d, request);
    EXPECT_TRUE(form) << form.message();
    for (const std::string& option : form.value().options)
      if (option.rfind("BIGTIFF=", 0) == 0) return option.substr(8);
    return std::string();
  };
  EXPECT_EQ(bigOf(*source, 147 * 256), "NO");
  EXPECT_EQ(bigOf(*source, 147 * 256 + 1), "YES");
  EXPECT_EQ(bigOf(*source, 200000), "YES");
  // Two bands of eight bytes.
  EXPECT_EQ(bigOf(*wide, 63 * 256), "NO");
  EXPECT_EQ(bigOf(*wide, 64 * 256), "YES");
}

}  // namespace
}  // namespace tarn::rectify
