#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "tests/raster/byrule.h"

namespace tarn::raster {
namespace {

bool gdalReads(const std::string& path) {
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER);
  bool all = true;
  for (int i = 1; i <= dataset->GetRasterCount(); ++i) {
    std::vector<uint8_t> line(dataset->GetRasterXSize());
    for (int y = 0; y < dataset->GetRasterYSize(); ++y) {
      all = all && dataset->GetRasterBand(i)->RasterIO(GF_Read, 0, y, int(line.size()), 1,
                                                       line.data(), int(line.size()), 1, GDT_Byte,
                                                       0, 0, nullptr) == CE_None;
    }
  }
  GDALClose(dataset);
  return all;
}

constexpr int64_t kMostPixels = 4'000'000;

/// Compares each overview that GDAL knows and the image has as a level with GDAL's reading of it.
int compareOverviews(const RasterImage& image) {
  if (!image.isAsStored()) return 0;
  auto* dataset = GDALDataset::Open(image.path().c_str(), GDAL_OF_RASTER);
  std::vector<std::pair<int, int>> sizes;
  for (int i = 0; i < dataset->GetRasterBand(1)->GetOverviewCount(); ++i) {
    GDALRasterBand* overview = dataset->GetRasterBand(1)->GetOverview(i);
    sizes.emplace_back(overview->GetXSize(), overview->GetYSize());
  }
  GDALClose(dataset);
  const std::optional<Scale> scale = scaleSaid(image);
  for (size_t i = 0; i < sizes.size() && image.levelCount() == sizes.size() + 1; ++i) {
    const auto [width, height] = sizes[i];
    if (int64_t(width) * height > kMostPixels) continue;
    const Window all{0,     0,     double(image.width()) / width, double(image.height()) / height,
                     width, height};
    EXPECT_LE(largestDifference(readWindow(image, all),
                                pixelsByRule(image.path(), scale.value_or(Scale{}), int(i))),
              scale ? 1 : 0)
        << width << " x " << height;
  }
  return image.levelCount() == sizes.size() + 1 ? int(sizes.size()) : 0;
}

TEST(RealFiles, NoneCrashesAndThoseShownAreGdals) {
  if (fileKind(TARN_DATA_DIR) != FileKind::kFolder)
    GTEST_SKIP() << "no real files in " << TARN_DATA_DIR;
  int shown = 0, refused = 0, overviews = 0;
  CPLPushErrorHandler(CPLQuietErrorHandler);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(TARN_DATA_DIR)) {
    const std::string path = entry.path().generic_u8string();
    const std::string ending = toLower(extensionOf(path));
    const bool isImage =
        ending == ".tif" || ending == ".tiff" || ending == ".img" || ending == ".jpg";
    if (!entry.is_regular_file() || !isImage) continue;
    SCOPED_TRACE(path);
    const auto opened = RasterImage::open(path, {{folderOf(path), ""}, true});
    if (!opened) {
      ++refused;
      EXPECT_EQ(opened.message().compare(0, path.size(), path), 0) << opened.message();
      continue;
    }
    const RasterImage& image = *opened.value();
    ReadCounts counts;
    std::vector<uint8_t> overview(64 * 64 * 3);
    const double cell = std::max(image.width(), image.height()) / 64.0;
    const bool readable =
        image.read({0, 0, cell, cell, 64, 64}, false, overview.data(), counts).isOk();
    overviews += compareOverviews(image);
    if (int64_t(image.width()) * image.height() > kMostPixels) continue;
    std::vector<uint8_t> out(size_t(image.width()) * image.height() * 3);
    const Window all{0, 0, 1, 1, image.width(), image.height()};
    if (!image.read(all, false, out.data(), counts)) {
      // What GDAL reads, this library must read.
      EXPECT_FALSE(gdalReads(path));
      ++refused;
      continue;
    }
    ++shown;
    EXPECT_TRUE(readable);
    if (!image.isAsStored()) continue;
    const std::optional<Scale> scale = scaleSaid(image);
    EXPECT_LE(largestDifference({image.width(), image.height(), 3, out},
                                pixelsByRule(path, scale.value_or(Scale{}))),
              scale ? 1 : 0);
  }
  CPLPopErrorHandler();
  std::printf("%d real files shown with %d overviews, %d refused with a reason\n", shown, overviews,
              refused);
  EXPECT_GT(shown, 0);
}

}  // namespace
}  // namespace tarn::raster
