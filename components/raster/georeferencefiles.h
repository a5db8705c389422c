// Finds what says where an image lies: the image itself and the files beside it.
#pragma once

#include <string>
#include <vector>

#include "components/raster/gdalaccess.h"
#include "components/raster/georeference.h"
#include "components/raster/imagefacts.h"

namespace tarn::raster {

struct GeoreferenceFound {
  /// In the order of precedence: .aux.xml, world file, the image; in each a transform before
  /// control points.
  std::vector<GeoCandidate> candidates;
  /// Sentences for the user, without the image's name.
  std::vector<std::string> notes;
  bool namesOverviewFile = false;
  /// Of the .aux.xml, as in ImageFacts.
  int coordinateSystem = -1;
};

GeoreferenceFound findGeoreference(const GuardedImage& image, const ImageFacts& facts);

}  // namespace tarn::raster
