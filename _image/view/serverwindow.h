// The window of cells that is asked of an image server for one view.
#pragma once

#include <optional>

#include "_image/view/pixelwindow.h"

namespace tarn::image {

/// The request for one image of a server, whose covered rectangle is `rect` (at least one pixel a
/// side), or nothing when image or view have no usable numbers.
///
/// The size along an axis is the rectangle's in screen pixels (divided by the clarity) plus one,
/// plus two where the rectangle ends before the image does and as far as there is image, rounded up
/// to tens, so that views that differ little ask for the same. More are asked for only when these
/// would leave a part of the view empty. Cells lie on the screen's pixel grid, also when a screen
/// pixel is smaller than an image pixel.
std::optional<PixelRequest> planServerRequest(const ViewState& view, const ImageExtent& image,
                                              const PixelRect& rect);

}  // namespace tarn::image
