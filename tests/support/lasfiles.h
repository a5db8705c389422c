// LAS files for tests, byte by byte.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace tarn::test {

struct LasPointSpec {
  int32_t x = 0, y = 0, z = 0;
  int red = 0, green = 0, blue = 0;  // 0 to 255
  bool isWithheld = false;
};

struct LasSpec {
  int minor = 2;
  int format = 2;
  double scale[3] = {0.01, 0.01, 0.01};
  double offset[3] = {40500000.0, 3512000.0, 0};
  int extraBytes = 0;     // of each record
  int colorFactor = 257;  // 1 writes colours of 8 bits
  std::vector<LasPointSpec> points;
};

template <typename T>
void putAt(std::string& bytes, size_t at, T value) {
  std::memcpy(&bytes[at], &value, sizeof value);
}

inline size_t lasHeaderSize(int minor) {
  return minor < 3 ? 227 : minor == 3 ? 235 : 375;
}

/// The bytes of the whole file.
inline std::string lasBytes(const LasSpec& spec) {
  static constexpr int kLengths[] = {20, 28, 26, 34, 57, 63, 30, 36, 38, 59, 67};
  static constexpr int kColors[] = {-1, -1, 20, 28, -1, 28, -1, 30, 30, -1, 30};
  const size_t start = lasHeaderSize(spec.minor);
  const size_t length = static_cast<size_t>(kLengths[spec.format] + spec.extraBytes);
  std::string bytes(start + length * spec.points.size(), '\0');
  bytes.replace(0, 4, "LASF");
  bytes[24] = 1;
  bytes[25] = static_cast<char>(spec.minor);
  putAt(bytes, 94, static_cast<uint16_t>(start));
  putAt(bytes, 96, static_cast<uint32_t>(start));
  bytes[104] = static_cast<char>(spec.format);
  putAt(bytes, 105, static_cast<uint16_t>(length));
  const auto count = spec.points.size();
  if (spec.minor < 4) putAt(bytes, 107, static_cast<uint32_t>(count));
  if (spec.minor == 4) putAt(bytes, 247, static_cast<uint64_t>(count));
  int32_t low[3] = {INT32_MAX, INT32_MAX, INT32_MAX};
  int32_t high[3] = {INT32_MIN, INT32_MIN, INT32_MIN};
  size_t at = start;
  for (const LasPointSpec& p : spec.points) {
    const int32_t xyz[3] = {p.x, p.y, p.z};
    for (size_t i = 0; i < 3; ++i) {
      putAt(bytes, at + 4 * i, xyz[i]);
      low[i] = std::min(low[i], xyz[i]);
      high[i] = std::max(high[i], xyz[i]);
    }
    if (p.isWithheld) bytes[at + 15] = static_cast<char>(spec.format < 6 ? 0x80 : 0x04);
    if (kColors[spec.format] >= 0) {
      const int rgb[3] = {p.red, p.green, p.blue};
      for (size_t i = 0; i < 3; ++i) {
        putAt(bytes, at + static_cast<size_t>(kColors[spec.format]) + 2 * i,
              static_cast<uint16_t>(rgb[i] * spec.colorFactor));
      }
    }
    at += length;
  }
  for (size_t i = 0; i < 3; ++i) {
    putAt(bytes, 131 + 8 * i, spec.scale[i]);
    putAt(bytes, 155 + 8 * i, spec.offset[i]);
    putAt(bytes, 179 + 16 * i, high[i] * spec.scale[i] + spec.offset[i]);
    putAt(bytes, 187 + 16 * i, low[i] * spec.scale[i] + spec.offset[i]);
  }
  return bytes;
}

}  // namespace tarn::test
