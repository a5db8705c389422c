#include "tests/support/rasters.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <cmath>

#include "base/text.h"

namespace tarn::test {
namespace {

constexpr double kRadians = 3.14159265358979323846 / 180;

}  // namespace

Raster makeRaster(int width, int height, double left, double top, double pixel,
                  const std::function<void(int, int, uint8_t*)>& paint) {
  Raster raster{width, height, left, top, pixel, {}};
  raster.rgb.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) paint(column, row, raster.at(column, row));
  }
  return raster;
}

bool writeRaster(const Raster& raster, const std::string& path, const std::string& driver,
                 const std::vector<std::string>& options) {
  GDALAllRegister();
  GDALDriverManager* manager = GetGDALDriverManager();
  GDALDriver* memory = manager->GetDriverByName("MEM");
  GDALDataset* source = memory->Create("", raster.width, raster.height, 3, GDT_Byte, nullptr);
  double transform[6] = {raster.left, raster.pixel, 0, raster.top, 0, -raster.pixel};
  source->SetGeoTransform(transform);
  const GDALColorInterp colors[] = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand};
  for (int band = 0; band < 3; ++band) {
    source->GetRasterBand(band + 1)->SetColorInterpretation(colors[band]);
  }
  bool done =
      source->RasterIO(GF_Write, 0, 0, raster.width, raster.height,
                       const_cast<uint8_t*>(raster.rgb.data()), raster.width, raster.height,
                       GDT_Byte, 3, nullptr, 3, GSpacing{raster.width} * 3, 1, nullptr) == CE_None;
  char** list = nullptr;
  for (const std::string& option : options) list = CSLAddString(list, option.c_str());
  GDALDataset* target = manager->GetDriverByName(driver.c_str())
                            ->CreateCopy(path.c_str(), source, FALSE, list, nullptr, nullptr);
  CSLDestroy(list);
  done = done && target != nullptr;
  if (target) GDALClose(target);
  GDALClose(source);
  return done;
}

Raster readRaster(const std::string& path) {
  GDALAllRegister();
  Raster raster;
  auto* data = static_cast<GDALDataset*>(GDALOpen(path.c_str(), GA_ReadOnly));
  if (!data) return raster;
  double transform[6] = {0, 1, 0, 0, 0, -1};
  data->GetGeoTransform(transform);
  raster.width = data->GetRasterXSize();
  raster.height = data->GetRasterYSize();
  raster.left = transform[0];
  raster.top = transform[3];
  raster.pixel = transform[1];
  raster.rgb.resize(static_cast<size_t>(raster.width) * static_cast<size_t>(raster.height) * 3);
  int bands[3] = {1, 1, 1};
  if (data->GetRasterCount() >= 3) {
    bands[1] = 2;
    bands[2] = 3;
  }
  if (data->RasterIO(GF_Read, 0, 0, raster.width, raster.height, raster.rgb.data(), raster.width,
                     raster.height, GDT_Byte, 3, bands, 3, GSpacing{raster.width} * 3, 1,
                     nullptr) != CE_None) {
    raster = {};
  }
  GDALClose(data);
  return raster;
}

Raster readWindow(const std::string& path, double left, double top, double right, double bottom,
                  int width, int height) {
  GDALAllRegister();
  auto* data = static_cast<GDALDataset*>(GDALOpen(path.c_str(), GA_ReadOnly));
  if (data == nullptr) return {};
  double transform[6] = {0, 1, 0, 0, 0, -1};
  data->GetGeoTransform(transform);
  GDALRasterIOExtraArg extra;
  INIT_RASTERIO_EXTRA_ARG(extra);
  extra.eResampleAlg = GRIORA_Average;
  extra.bFloatingPointWindowValidity = TRUE;
  extra.dfXOff = (left - transform[0]) / transform[1];
  extra.dfYOff = (top - transform[3]) / transform[5];
  extra.dfXSize = (right - left) / transform[1];
  extra.dfYSize = (bottom - top) / transform[5];
  const auto first = [](double at) { return static_cast<int>(std::floor(at)); };
  const int x = first(extra.dfXOff);
  const int y = first(extra.dfYOff);
  Raster window;
  window.rgb.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
  int bands[3] = {1, 2, 3};
  if (data->RasterIO(GF_Read, x, y, first(extra.dfXOff + extra.dfXSize) + 1 - x,
                     first(extra.dfYOff + extra.dfYSize) + 1 - y, window.rgb.data(), width, height,
                     GDT_Byte, 3, bands, 3, GSpacing{width} * 3, 1, &extra) == CE_None) {
    window.width = width;
    window.height = height;
    window.left = left;
    window.top = top;
    window.pixel = (right - left) / width;
  }
  GDALClose(data);
  return window;
}

std::string View::argument() const {
  return formatDouble(centerX) + "," + formatDouble(centerY) + "," + formatDouble(height) + "," +
         formatDouble(twist);
}

std::string View::size() const {
  return std::to_string(width) + "x" + std::to_string(screenHeight);
}

void View::toGround(double px, double py, double& x, double& y) const {
  const double right = (px - width / 2.0) * unitsPerPixel();
  const double up = (screenHeight / 2.0 - py) * unitsPerPixel();
  const double co = std::cos(twist * kRadians);
  const double si = std::sin(twist * kRadians);
  x = centerX + right * co + up * si;
  y = centerY - right * si + up * co;
}

void View::toScreen(double x, double y, double& px, double& py) const {
  const double dx = x - centerX;
  const double dy = y - centerY;
  const double co = std::cos(twist * kRadians);
  const double si = std::sin(twist * kRadians);
  px = width / 2.0 + (dx * co - dy * si) / unitsPerPixel();
  py = screenHeight / 2.0 - (dx * si + dy * co) / unitsPerPixel();
}

bool expectedPixel(const Raster& raster, const View& view, int px, int py, double rim,
                   double rgb[3]) {
  for (const double dx : {-rim, 1 + rim}) {
    for (const double dy : {-rim, 1 + rim}) {
      double x = 0;
      double y = 0;
      view.toGround(px + dx, py + dy, x, y);
      const double column = (x - raster.left) / raster.pixel;
      const double row = (raster.top - y) / raster.pixel;
      if (column < 0 || row < 0 || column >= raster.width || row >= raster.height) return false;
    }
  }
  const int places =
      std::clamp(static_cast<int>(std::ceil(view.unitsPerPixel() / raster.pixel)), 2, 10);
  double sum[3] = {0, 0, 0};
  for (int j = 0; j < places; ++j) {
    for (int i = 0; i < places; ++i) {
      double x = 0;
      double y = 0;
      view.toGround(px + (i + 0.5) / places, py + (j + 0.5) / places, x, y);
      const uint8_t* color = raster.at(static_cast<int>((x - raster.left) / raster.pixel),
                                       static_cast<int>((raster.top - y) / raster.pixel));
      for (int c = 0; c < 3; ++c) sum[c] += color[c];
    }
  }
  for (int c = 0; c < 3; ++c) rgb[c] = sum[c] / (places * places);
  return true;
}

}  // namespace tarn::test
