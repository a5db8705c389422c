#include "tests/raster/warpedbygdal.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gdal_utils.h>
#include <gtest/gtest.h>

#include "base/text.h"

namespace tarn::raster {

Picture warpedByGdal(const std::string& path, const RasterImage& image,
                     const std::vector<std::string>& more, int finer) {
  GDALAllRegister();
  const GeoTransform& t = image.geoTransform();
  CPLStringList words;
  const std::vector<std::string> all = {"-q",
                                        "-of",
                                        "MEM",
                                        "-r",
                                        "bilinear",
                                        "-et",
                                        "0",
                                        "-wo",
                                        "XSCALE=1",
                                        "-wo",
                                        "YSCALE=1",
                                        "-te",
                                        formatDouble(t.x0),
                                        formatDouble(t.y0 + t.e * image.height()),
                                        formatDouble(t.x0 + t.a * image.width()),
                                        formatDouble(t.y0),
                                        "-ts",
                                        std::to_string(image.width() * finer),
                                        std::to_string(image.height() * finer)};
  for (const std::string& word : all) words.AddString(word.c_str());
  for (const std::string& word : more) words.AddString(word.c_str());
  Picture picture;
  GDALWarpAppOptions* options = GDALWarpAppOptionsNew(words.List(), nullptr);
  GDALDatasetH source = GDALOpen(path.c_str(), GA_ReadOnly);
  GDALDatasetH warped = source ? GDALWarp("", nullptr, 1, &source, options, nullptr) : nullptr;
  if (warped) {
    picture = {image.width() * finer, image.height() * finer, GDALGetRasterCount(warped), {}};
    picture.pixels.resize(size_t(picture.width) * picture.height * picture.channels);
    EXPECT_EQ(GDALDatasetRasterIO(warped, GF_Read, 0, 0, picture.width, picture.height,
                                  picture.pixels.data(), picture.width, picture.height, GDT_Byte,
                                  picture.channels, nullptr, picture.channels,
                                  picture.width * picture.channels, 1),
              CE_None);
    GDALClose(warped);
  }
  if (source) GDALClose(source);
  GDALWarpAppOptionsFree(options);
  return picture;
}

void placeByTransform(const std::string& path, const GeoTransform& t) {
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE);
  ASSERT_NE(dataset, nullptr) << path;
  double six[6] = {t.x0, t.a, t.b, t.y0, t.d, t.e};
  EXPECT_EQ(dataset->SetGeoTransform(six), CE_None);
  GDALClose(dataset);
}

void placeByPoints(const std::string& path, const std::vector<ControlPoint>& points) {
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE);
  ASSERT_NE(dataset, nullptr) << path;
  std::vector<GDAL_GCP> gdalPoints(points.size());
  GDALInitGCPs(int(points.size()), gdalPoints.data());
  for (size_t i = 0; i < points.size(); ++i) {
    gdalPoints[i].dfGCPPixel = points[i].column;
    gdalPoints[i].dfGCPLine = points[i].row;
    gdalPoints[i].dfGCPX = points[i].x;
    gdalPoints[i].dfGCPY = points[i].y;
  }
  EXPECT_EQ(dataset->SetGCPs(int(points.size()), gdalPoints.data(), ""), CE_None);
  GDALDeinitGCPs(int(points.size()), gdalPoints.data());
  GDALClose(dataset);
}

Difference compareWarped(const Picture& ours, const Picture& gdals) {
  Difference result;
  if (ours.width != gdals.width || ours.height != gdals.height) return {1 << 30, 255, 0};
  for (int y = 0; y < ours.height; ++y) {
    for (int x = 0; x < ours.width; ++x) {
      bool blackOurs = true, blackGdals = true;
      int most = 0;
      for (int c = 0; c < 3; ++c) {
        const int a = ours.at(x, y)[c], b = gdals.at(x, y)[gdals.channels == 1 ? 0 : c];
        blackOurs = blackOurs && a == 0;
        blackGdals = blackGdals && b == 0;
        most = std::max(most, std::abs(a - b));
      }
      if (blackOurs != blackGdals) {
        ++result.outline;
      } else if (!blackOurs) {
        ++result.compared;
        result.most = std::max(result.most, most);
      }
    }
  }
  return result;
}

}  // namespace tarn::raster
