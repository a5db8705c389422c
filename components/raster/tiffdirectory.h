// The directories of a TIFF or BigTIFF file: where its pictures' blocks lie. Only what the fast
// readers and the pyramid need; everything else about a TIFF is GDAL's.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/result.h"

namespace tarn::raster {

namespace tiff {
constexpr uint16_t kNone = 1, kJpeg = 7, kDeflate = 8, kZstd = 50000;
constexpr uint16_t kMinIsBlack = 1, kRgb = 2, kYCbCr = 6;
constexpr uint32_t kReducedImage = 1, kMask = 4;
}  // namespace tiff

/// One picture of a TIFF file. Offsets and sizes are in bytes; blocks go row by row.
struct TiffDirectory {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t subfileType = 0;
  uint16_t compression = tiff::kNone;
  uint16_t photometric = 0;
  uint16_t samples = 1;
  bool planar = false;
  /// Says that colours are multiplied by the alpha that follows them.
  bool alphaMultiplied = false;
  /// Every sample is an unsigned number of 8 bits, first bit on top.
  bool plainBytes = false;
  bool tiled = false;
  uint32_t blockWidth = 0;
  uint32_t blockHeight = 0;
  std::vector<uint64_t> offsets;
  std::vector<uint64_t> byteCounts;
  std::vector<uint8_t> jpegTables;
  std::string gdalMetadata;

  uint32_t blocksAcross() const { return (width - 1) / blockWidth + 1; }
  uint32_t blocksDown() const { return (height - 1) / blockHeight + 1; }
  /// Gray or RGB pixels of plain bytes, samples together: what the fast readers know.
  bool isPlainPicture() const;
};

/// True for a TIFF with more pictures than `most` in its main chain.
bool hasMorePicturesThan(const RandomBytes& file, uint64_t fileSize, size_t most);

/// Reads the directories of the file's main chain, up to the first damaged one and as many as
/// overviews can need. Fails on what is no TIFF, on a damaged first directory, and when a block of
/// the first picture lies behind the end of the file.
Result<std::vector<TiffDirectory>> readTiffDirectories(const RandomBytes& file, uint64_t fileSize);

}  // namespace tarn::raster
