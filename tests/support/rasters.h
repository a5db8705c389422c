// Rasters made and read with GDAL alone, as an independent judge of pictures.
#pragma once

#include <QImage>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tarn::test {

/// A whole raster in memory: three bytes a pixel, row 0 on top, and its outer upper-left corner.
struct Raster {
  int width = 0;
  int height = 0;
  double left = 0;
  double top = 0;
  double pixel = 1;  // ground units, both directions
  std::vector<uint8_t> rgb;

  const uint8_t* at(int column, int row) const {
    return &rgb[(static_cast<size_t>(row) * static_cast<size_t>(width) +
                 static_cast<size_t>(column)) *
                3];
  }
  uint8_t* at(int column, int row) {
    return &rgb[(static_cast<size_t>(row) * static_cast<size_t>(width) +
                 static_cast<size_t>(column)) *
                3];
  }
};

/// A raster whose colours come from `paint(column, row, rgb)`.
Raster makeRaster(int width, int height, double left, double top, double pixel,
                  const std::function<void(int, int, uint8_t*)>& paint);

/// Writes through a GDAL driver ("GTiff", "HFA", "JPEG") with creation options ("TILED=YES").
bool writeRaster(const Raster& raster, const std::string& path, const std::string& driver = "GTiff",
                 const std::vector<std::string>& options = {});

/// Reads every full-resolution pixel with GDAL; empty when GDAL cannot open it.
Raster readRaster(const std::string& path);

/// The ground between two corners reduced by GDAL to width x height pixels, each the mean of those
/// under it; empty when GDAL cannot. The geometry is that of the window.
Raster readWindow(const std::string& path, double left, double top, double right, double bottom,
                  int width, int height);

/// A view as the program takes it: centre, height in ground units, twist in degrees, screen size.
struct View {
  double centerX = 0;
  double centerY = 0;
  double height = 1;
  double twist = 0;
  int width = 640;
  int screenHeight = 480;

  double unitsPerPixel() const { return height / screenHeight; }
  std::string argument() const;  // for --view
  std::string size() const;      // for --size
  /// Ground position of a screen position (pixel edges, y down), and back.
  void toGround(double px, double py, double& x, double& y) const;
  void toScreen(double x, double y, double& px, double& py) const;
};

/// What one screen pixel must show: the mean of the full-resolution pixels under a regular pattern
/// of places in it. False when the pixel, with a rim of `rim` screen pixels, is not wholly inside.
bool expectedPixel(const Raster& raster, const View& view, int px, int py, double rim,
                   double rgb[3]);

}  // namespace tarn::test
