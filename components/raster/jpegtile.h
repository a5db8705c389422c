// One JPEG stream to pixels and back, as TIFF files hold them.
#pragma once

#include <cstdint>
#include <vector>

#include "base/span.h"

namespace tarn::raster {

enum class JpegColours { kGray, kRgb, kYCbCr };

/// Decodes the upper-left `width * height` pixels of a stream into `out` (1 byte a pixel for kGray,
/// else 3; rows without gaps). `tables` is what the streams of one file share, or empty. False when
/// the stream is damaged, cut short, smaller than asked for or of other colours.
bool decodeJpegTile(Span<const uint8_t> stream, Span<const uint8_t> tables, JpegColours colours,
                    int width, int height, uint8_t* out);

/// Encodes a tile of gray or RGB pixels as a whole stream of the given quality (colour as YCbCr
/// with halved chroma). False when there is no memory.
bool encodeJpegTile(const uint8_t* pixels, int width, int height, int channels, int quality,
                    std::vector<uint8_t>& out);

}  // namespace tarn::raster
