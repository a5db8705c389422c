// The entries of a TIFF directory as bytes: written by us, or taken over from a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"

namespace tarn::raster {

enum class TagType : uint16_t { kText = 2, kShort = 3, kLong = 4, kLong8 = 16 };

/// One entry: its values as the file holds them, low byte first.
struct TiffTag {
  uint16_t tag = 0;
  uint16_t type = 0;
  uint64_t count = 0;
  std::vector<uint8_t> bytes;
};

TiffTag numbersTag(uint16_t tag, TagType type, const std::vector<uint64_t>& values);
TiffTag textTag(uint16_t tag, const std::string& text);
/// GDAL's metadata, as XML.
TiffTag metadataTag(const std::string& xml);

void putNumber(std::vector<uint8_t>& out, uint64_t value, unsigned bytes);

/// Appends one directory that will stand at `base + out.size()`; `tags` in ascending order. The
/// next one follows it directly, unless it is the last.
void putDirectory(std::vector<uint8_t>& out, uint64_t base, const std::vector<TiffTag>& tags,
                  bool big, bool last);

/// The tags of the first directory of a small TIFF (not BigTIFF, low byte first) that do not say
/// how pixels are stored: georeferencing, metadata, texts. The reason of a failure names the file.
Result<std::vector<TiffTag>> readDescribingTags(const std::string& path);

}  // namespace tarn::raster
