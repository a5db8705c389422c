#include "tests/raster/testimages.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "base/file.h"
#include "base/path.h"

namespace tarn::raster {
namespace {

uint8_t content(double value) {
  return static_cast<uint8_t>(std::min(254.0, std::max(1.0, value)));
}

Picture waves(int width, int height, int channels, double noise) {
  Picture picture{width, height, channels, {}};
  picture.pixels.resize(static_cast<size_t>(width) * height * channels);
  std::vector<double> across(static_cast<size_t>(width) * channels),
      down(static_cast<size_t>(height) * channels);
  for (size_t i = 0; i < across.size(); ++i)
    across[i] = 127 + 45 * std::sin(double(i / channels) / (37.0 + 5.0 * double(i % channels)));
  for (size_t i = 0; i < down.size(); ++i)
    down[i] = 45 * std::cos(double(i / channels) / (51.0 - 7.0 * double(i % channels)));
  uint32_t seed = 12345;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < channels; ++c) {
        seed = seed * 1664525 + 1013904223;
        const double wave = across[size_t(x) * channels + c] + down[size_t(y) * channels + c];
        picture.at(x, y)[c] = content(wave + noise * ((seed >> 16) % 256 - 128.0) / 128);
      }
    }
  }
  return picture;
}

}  // namespace

Picture texture(int width, int height, int channels) {
  return waves(width, height, channels, 30);
}

Picture smooth(int width, int height, int channels) {
  return waves(width, height, channels, 0);
}

void writePicture(const std::string& path, const Picture& picture, const FileForm& form) {
  GDALAllRegister();
  auto* memory = GetGDALDriverManager()->GetDriverByName("MEM")->Create(
      "", picture.width, picture.height, picture.channels, GDT_Byte, nullptr);
  ASSERT_EQ(memory->RasterIO(GF_Write, 0, 0, picture.width, picture.height,
                             const_cast<uint8_t*>(picture.pixels.data()), picture.width,
                             picture.height, GDT_Byte, picture.channels, nullptr, picture.channels,
                             picture.width * picture.channels, 1, nullptr),
            CE_None);
  const GDALColorInterp colours[] = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand, GCI_AlphaBand};
  for (int i = 0; i < picture.channels && picture.channels > 1 && form.coloursNamed; ++i) {
    memory->GetRasterBand(i + 1)->SetColorInterpretation(colours[i]);
  }
  double place[6] = {500000, 0.5, 0, 3400000, 0, -0.5};
  if (form.georeferenced) memory->SetGeoTransform(place);
  CPLStringList options;
  for (const std::string& option : form.options) options.AddString(option.c_str());
  auto* driver = GetGDALDriverManager()->GetDriverByName(form.driver.c_str());
  GDALDataset* written =
      driver->CreateCopy(path.c_str(), memory, FALSE, options.List(), nullptr, nullptr);
  ASSERT_NE(written, nullptr) << path;
  GDALClose(written);
  GDALClose(memory);
}

void writeText(const std::string& path, const std::string& text) {
  ASSERT_TRUE(writeFileAtomically(path, text));
}

Picture readByGdal(const std::string& path, int overview) {
  GDALAllRegister();
  Picture picture;
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER);
  if (!dataset) return picture;
  picture.channels = dataset->GetRasterCount();
  for (int c = 0; c < picture.channels; ++c) {
    GDALRasterBand* band = dataset->GetRasterBand(c + 1);
    if (overview >= 0) band = band->GetOverview(overview);
    if (!band) break;
    picture.width = band->GetXSize();
    picture.height = band->GetYSize();
    picture.pixels.resize(static_cast<size_t>(picture.width) * picture.height * picture.channels);
    EXPECT_EQ(
        band->RasterIO(GF_Read, 0, 0, picture.width, picture.height, picture.pixels.data() + c,
                       picture.width, picture.height, GDT_Byte, picture.channels,
                       static_cast<GSpacing>(picture.width) * picture.channels, nullptr),
        CE_None);
  }
  GDALClose(dataset);
  return picture;
}

bool gdalHas(const std::string& compression) {
  GDALAllRegister();
  const char* options = GetGDALDriverManager()->GetDriverByName("GTiff")->GetMetadataItem(
      GDAL_DMD_CREATIONOPTIONLIST);
  const bool has = options && std::string(options).find("<Value>" + compression + "</Value>") !=
                                  std::string::npos;
  if (!has) std::printf("without %s: this GDAL has none\n", compression.c_str());
  return has;
}

Scratch::Scratch() {
  auto made = makeTemporaryFolder(::testing::TempDir(), "raster");
  EXPECT_TRUE(made);
  if (made) folder_ = made.value();
}

Scratch::~Scratch() {
  EXPECT_TRUE(removeAll(folder_));
}

std::shared_ptr<RasterImage> openImage(const std::string& path, const std::string& cache) {
  auto opened = RasterImage::open(path, {{folderOf(path), cache}, true});
  EXPECT_TRUE(opened) << opened.message();
  return opened ? opened.value() : nullptr;
}

Status buildFor(const std::string& path, const std::string& cache) {
  const auto image = openImage(path, cache);
  std::string note;
  return image ? image->buildPyramid({folderOf(path), cache}, nullptr, note)
               : Status::error("closed");
}

Picture readWindow(const RasterImage& image, const Window& window, bool smooth) {
  Picture picture{window.columns, window.rows, 3, {}};
  picture.pixels.assign(static_cast<size_t>(window.columns) * window.rows * 3, 77);
  ReadCounts counts;
  const Status done = image.read(window, smooth, picture.pixels.data(), counts);
  EXPECT_TRUE(done) << done.message();
  return picture;
}

Picture readAll(const RasterImage& image) {
  return readWindow(image, {0, 0, 1, 1, image.width(), image.height()});
}

int largestDifference(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height) return 1000;
  int most = 0;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      for (int c = 0; c < 3; ++c) {
        most = std::max(most, std::abs(a.at(x, y)[a.channels == 1 ? 0 : c] -
                                       b.at(x, y)[b.channels == 1 ? 0 : c]));
      }
    }
  }
  return most;
}

}  // namespace tarn::raster
