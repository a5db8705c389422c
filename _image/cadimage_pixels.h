// One view's pixels of one image, on their way from the source to the drawing step.
#pragma once

#include <cstdlib>
#include <memory>

#include "_image/view/pixelwindow.h"
#include "inc/iimagedivision.h"

namespace tarn::image {

struct FreePixels {
  void operator()(unsigned char* pixels) const { std::free(pixels); }
};
/// Three bytes a pixel from the start, rows without gaps.
using PixelBuffer = std::unique_ptr<unsigned char, FreePixels>;

/// Reads what was planned. What could not be read stays zero, which is drawn transparent. Null only
/// when memory is exhausted.
PixelBuffer readPixels(IImageDivision& source, const PixelRequest& request, int clarity);

}  // namespace tarn::image
