// Pixels from the source's three bytes to the host's four.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::image {

/// Converts `count` pixels of R, G, B bytes to B, G, R, A bytes. Pure black and pure white get
/// alpha 0, all others 255. The buffers must not overlap; exactly 3 * count bytes are read.
void convertRgbToBgra(const uint8_t* rgb, size_t count, uint8_t* bgra);

/// The same for a grid of `width` by `height` pixels of which the pixel (c, r) is converted when r
/// < limitHeight or c < limitWidth; any other stays as it is in `bgra` and takes no input.
void convertRgbToBgraWithin(const uint8_t* rgb, int width, int height, int limitWidth,
                            int limitHeight, uint8_t* bgra);

}  // namespace tarn::image
