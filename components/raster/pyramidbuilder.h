// Makes the pyramid file of an image.
#pragma once

#include <optional>
#include <string>

#include "base/result.h"
#include "components/raster/progress.h"
#include "components/raster/pyramidfile.h"
#include "components/raster/tile.h"

namespace tarn::raster {

struct PyramidSource {
  PyramidSubject subject;
  /// The image in full size.
  const TileReader* reader = nullptr;
  /// Of an image whose samples are scaled.
  std::optional<Scale> scale;
  /// Lines stay however thin they are.
  bool thinLines = false;
  /// The image is JPEG-compressed, and so may its pyramid be.
  bool lossy = false;
};

/// Builds into a hidden folder beside the place, checks, syncs, and renames into place: beside the
/// image, or in the cache folder when that cannot be (`note` says so). Uses all processors; memory
/// is about 0.4 kB a column of the image and a few MB. On failure nothing is left behind.
Status buildPyramidFile(const PyramidSource& source, const PyramidPlaces& places,
                        const Progress& progress, std::string& note);

}  // namespace tarn::raster
