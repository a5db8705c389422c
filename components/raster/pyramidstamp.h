// What ties a pyramid to the image that it was made from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/result.h"
#include "components/raster/presentation.h"

namespace tarn::raster {

/// Size, time of last change and both ends of an image file.
struct ImageStamp {
  uint64_t size = 0;
  int64_t modifiedNs = 0;
  uint64_t endsHash = 0;

  bool operator==(const ImageStamp& o) const {
    return size == o.size && modifiedNs == o.modifiedNs && endsHash == o.endsHash;
  }
};

/// Reads the stamp of a file as it is now.
Result<ImageStamp> stampOf(const std::string& path);

/// Text form for the pyramid's metadata, and back; empty for a text that is none.
std::string formatStamp(const ImageStamp& stamp);
std::optional<ImageStamp> parseStamp(const std::string& text);

/// What a pyramid says about where it comes from.
struct PyramidMark {
  ImageStamp stamp;
  /// How the image's samples became the pyramid's pixels; empty for the image's own bands.
  std::string form;
  /// The scale of samples that are not bytes.
  std::optional<Scale> scale;
};

/// The GDAL metadata of a pyramid's first picture, and the mark in such a text.
std::string markMetadata(const PyramidMark& mark);
std::optional<PyramidMark> markInMetadata(const std::string& xml);

/// A 64-bit hash (FNV-1a) of bytes, going on from `hash`.
constexpr uint64_t kHashStart = 0xCBF29CE484222325ULL;
uint64_t hashBytes(const void* bytes, size_t count, uint64_t hash = kHashStart);
/// The hash of a text as 16 letters for a file name.
std::string hashName(const std::string& text);

}  // namespace tarn::raster
