// An open image as a chain of transformations draws it.
#pragma once

#include <memory>

#include "components/raster/rasterimage.h"
#include "components/raster/warpedimage.h"
#include "components/rectify/chain.h"

namespace tarn::rectify {

/// Never changes; a new state of the rectification is a new picture.
struct Picture {
  std::shared_ptr<const raster::RasterImage> image;
  /// Null when the image is drawn nowhere that can be computed with.
  std::shared_ptr<const raster::WarpedImage> drawn;
};

std::shared_ptr<const Picture> makePicture(std::shared_ptr<const raster::RasterImage> image,
                                           const Chain& chain);

}  // namespace tarn::rectify
