// Tiles of pixels as TIFF files hold them.
#pragma once

#include <cstdint>
#include <vector>

namespace tarn::raster {

enum class TileCompression { kNone, kJpeg, kDeflate, kZstd };

/// How the tiles of a file are compressed. kDeflate and kZstd store differences between neighbours.
struct TileCoding {
  TileCompression compression = TileCompression::kNone;
  /// Of kJpeg, 1 to 100.
  int quality = 90;
};

/// True when this build's GDAL can write and read it.
bool canCode(TileCompression compression);

/// Encodes `width * height` gray or RGB pixels, rows without gaps. False when there is no memory.
/// May be called from several threads at once.
bool encodeTile(const TileCoding& coding, const uint8_t* pixels, int width, int height,
                int channels, std::vector<uint8_t>& out);

}  // namespace tarn::raster
