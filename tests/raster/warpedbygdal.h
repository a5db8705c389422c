// GDAL's own warp of an image onto the grid that we report.
#pragma once

#include <string>
#include <vector>

#include "tests/raster/testimages.h"

namespace tarn::raster {

/// The file warped by GDAL, bilinear and by exact positions, onto the image's reported grid; empty
/// when GDAL fails. `more` are further options of gdalwarp.
Picture warpedByGdal(const std::string& path, const RasterImage& image,
                     const std::vector<std::string>& more = {}, int finer = 1);

/// The file with another transform or with control points ("column row x y" each).
void placeByTransform(const std::string& path, const GeoTransform& transform);
void placeByPoints(const std::string& path, const std::vector<ControlPoint>& points);

struct Difference {
  /// Pixels that are black in one of the two only.
  int outline = 0;
  /// Largest difference of the others.
  int most = 0;
  int compared = 0;
};
Difference compareWarped(const Picture& ours, const Picture& gdals);

}  // namespace tarn::raster
