// Size and place of an image as a server of images gives it out: what stands in the file alone.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/georeference.h"

namespace tarn::raster {

struct GroundPoint {
  double x = 0;
  double y = 0;
};

struct ImageOutline {
  /// As presented, north up.
  int width = 0;
  int height = 0;
  GeoTransform transform;
  /// The file says where it lies.
  bool isPlaced = false;
  /// As RasterImage::coordinateSystem().
  int coordinateSystem = -1;
  /// Where the pixels lie, anticlockwise, from the image's own coordinates and as longitudes and
  /// latitudes (WGS 84); empty where that is not known.
  std::vector<GroundPoint> corners;
  std::vector<GroundPoint> geographic;
};

/// Reads the directories of a file that a server can give out in pieces; fails on others, with a
/// reason that names it.
Result<ImageOutline> readOutline(const std::string& path);

}  // namespace tarn::raster
