// TIFF files written field by field, right or wrong.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::hostile {

/// One field of a directory. With `bytes` its value lies outside the directory; else it is `value`.
struct Field {
  uint16_t tag = 0;
  uint16_t type = 0;
  uint32_t count = 0;
  uint32_t value = 0;
  std::string bytes;
};

constexpr uint16_t kByte = 1, kText = 2, kShort = 3, kLong = 4, kDouble = 12;

Field shortField(uint16_t tag, uint32_t value);
Field longField(uint16_t tag, uint32_t value);
Field textField(uint16_t tag, const std::string& text);
Field doubleField(uint16_t tag, const std::vector<double>& values);

/// Numbers as they lie in the file, least byte first.
std::string littleEndian(uint64_t value, int bytes);

/// Where the pixels of tiffOf begin.
constexpr uint32_t kPixelsAt = 8;

/// A gray image of 64 x 64 in one uncompressed strip of even gray 120, with fields added or
/// replaced. `next` is where the next directory lies; kOwnPlace: the directory itself.
constexpr uint32_t kOwnPlace = 1;
std::string tiffOf(const std::vector<Field>& changes, uint32_t next = 0);

/// The same with `pixels` in the place of the strip's bytes.
std::string tiffOf(const std::vector<Field>& changes, const std::string& pixels, uint32_t next = 0);

}  // namespace tarn::hostile
