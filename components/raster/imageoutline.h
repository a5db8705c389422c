// Size and place of an image as a server of images gives it out: what stands in the file alone.
#pragma once

#include <string>

#include "base/result.h"
#include "components/raster/georeference.h"

namespace tarn::raster {

struct ImageOutline {
  /// As presented, north up.
  int width = 0;
  int height = 0;
  GeoTransform transform;
  /// The file says where it lies.
  bool isPlaced = false;
  /// As RasterImage::coordinateSystem().
  int coordinateSystem = -1;
};

/// Reads the directories of a file that a server can give out in pieces; fails on others, with a
/// reason that names it.
Result<ImageOutline> readOutline(const std::string& path);

}  // namespace tarn::raster
