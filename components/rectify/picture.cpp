#include "components/rectify/picture.h"

#include <utility>

#include "components/rectify/drawnmapping.h"

namespace tarn::rectify {

std::shared_ptr<const Picture> makePicture(std::shared_ptr<const raster::RasterImage> image,
                                           const Chain& chain) {
  auto picture = std::make_shared<Picture>();
  if (chain.isAffine()) picture->drawn = raster::WarpedImage::place(image, chain.affine());
  if (!picture->drawn) {
    if (const auto frame = frameOf(chain)) {
      picture->drawn = raster::WarpedImage::warp(
          image, {frame->transform, frame->width, frame->height,
                  std::make_shared<DrawnMapping>(chain, *frame), frame->pixelLength});
    }
  }
  picture->image = std::move(image);
  return picture;
}

}  // namespace tarn::rectify
