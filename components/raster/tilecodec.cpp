#include "components/raster/tilecodec.h"

#include <cpl_compressor.h>
#include <cpl_conv.h>
#include <cpl_string.h>

#include "components/raster/jpegtile.h"

namespace tarn::raster {
namespace {

// The levels that GDAL takes by itself.
constexpr int kDeflateLevel = 6;
constexpr const char* kZstdLevel = "LEVEL=9";
// What a stream of incompressible bytes may grow by, and more.
constexpr size_t kGrowth = 4096;

/// Each sample less the one to its left; the first pixel of a row stays.
std::vector<uint8_t> differences(const uint8_t* pixels, int width, int height, int channels) {
  const size_t stride = static_cast<size_t>(width) * channels;
  std::vector<uint8_t> out(stride * height);
  for (int y = 0; y < height; ++y) {
    const uint8_t* from = pixels + y * stride;
    uint8_t* to = out.data() + y * stride;
    for (int c = 0; c < channels; ++c) to[c] = from[c];
    for (size_t i = channels; i < stride; ++i)
      to[i] = static_cast<uint8_t>(from[i] - from[i - channels]);
  }
  return out;
}

bool deflate(const std::vector<uint8_t>& bytes, std::vector<uint8_t>& out) {
  out.resize(bytes.size() + bytes.size() / 8 + kGrowth);
  size_t size = 0;
  if (!CPLZLibDeflate(bytes.data(), bytes.size(), kDeflateLevel, out.data(), out.size(), &size))
    return false;
  out.resize(size);
  return true;
}

bool zstd(const std::vector<uint8_t>& bytes, std::vector<uint8_t>& out) {
  const CPLCompressor* compressor = CPLGetCompressor("zstd");
  if (!compressor) return false;
  const char* options[] = {kZstdLevel, nullptr};
  out.resize(bytes.size() + bytes.size() / 8 + kGrowth);
  void* target = out.data();
  size_t size = out.size();
  if (!compressor->pfnFunc(bytes.data(), bytes.size(), &target, &size, options,
                           compressor->user_data))
    return false;
  out.resize(size);
  return true;
}

}  // namespace

bool canCode(TileCompression compression) {
  return compression != TileCompression::kZstd || CPLGetCompressor("zstd") != nullptr;
}

bool encodeTile(const TileCoding& coding, const uint8_t* pixels, int width, int height,
                int channels, std::vector<uint8_t>& out) {
  switch (coding.compression) {
    case TileCompression::kJpeg:
      return encodeJpegTile(pixels, width, height, channels, coding.quality, out);
    case TileCompression::kDeflate:
      return deflate(differences(pixels, width, height, channels), out);
    case TileCompression::kZstd:
      return zstd(differences(pixels, width, height, channels), out);
    case TileCompression::kNone:
      break;
  }
  out.assign(pixels, pixels + static_cast<size_t>(width) * height * channels);
  return true;
}

}  // namespace tarn::raster
