#include "host/pointcloud/lasheader.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tarn::host {

namespace {

// Places in the header, bytes from the start of the file.
constexpr size_t kMajorAt = 24;
constexpr size_t kMinorAt = 25;
constexpr size_t kSizeAt = 94;
constexpr size_t kPointsAt = 96;
constexpr size_t kFormatAt = 104;
constexpr size_t kRecordLengthAt = 105;
constexpr size_t kCountAt = 107;
constexpr size_t kScaleAt = 131;
constexpr size_t kOffsetAt = 155;
constexpr size_t kBoxAt = 179;  // max x, min x, max y, min y, max z, min z
constexpr size_t kShortestHeader = 227;
constexpr size_t kWideCountAt = 247;
constexpr int kFirstWithWideCount = 4;
constexpr unsigned kCompressedBits = 0xC0;

constexpr double kLargestScale = 1e6;
constexpr double kLargestOffset = 1e12;

struct Format {
  std::uint32_t shortest;
  int colorAt;
};
constexpr Format kFormats[] = {{20, -1}, {28, -1}, {26, 20}, {34, 28}, {57, -1}, {63, 28},
                               {30, -1}, {36, 30}, {38, 30}, {59, -1}, {67, 30}};

/// A little-endian number; the place has been checked.
template <typename T>
T numberAt(const std::string& bytes, size_t at) {
  T value{};
  std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

Status refuse(const std::string& reason) {
  return Status::error(reason);
}

Status readPlacement(const std::string& bytes, LasHeader& header) {
  for (size_t axis = 0; axis < 3; ++axis) {
    header.scale[axis] = numberAt<double>(bytes, kScaleAt + 8 * axis);
    header.offset[axis] = numberAt<double>(bytes, kOffsetAt + 8 * axis);
    header.maximum[axis] = numberAt<double>(bytes, kBoxAt + 16 * axis);
    header.minimum[axis] = numberAt<double>(bytes, kBoxAt + 16 * axis + 8);
    const double scale = std::fabs(header.scale[axis]);
    if (!(scale > 0) || !(scale <= kLargestScale) ||
        !(std::fabs(header.offset[axis]) <= kLargestOffset)) {
      return refuse("the scale or the offset of its coordinates is no sensible number");
    }
  }
  return {};
}

Status readLayout(const std::string& bytes, std::uint64_t fileSize, LasHeader& header) {
  const auto headerSize = numberAt<std::uint16_t>(bytes, kSizeAt);
  header.pointsAt = numberAt<std::uint32_t>(bytes, kPointsAt);
  header.recordLength = numberAt<std::uint16_t>(bytes, kRecordLengthAt);
  header.claimedPoints = numberAt<std::uint32_t>(bytes, kCountAt);
  if (header.minorVersion >= kFirstWithWideCount && bytes.size() >= kLasHeaderBytes) {
    const auto wide = numberAt<std::uint64_t>(bytes, kWideCountAt);
    if (wide != 0) header.claimedPoints = wide;
  }
  const auto format = static_cast<unsigned char>(bytes[kFormatAt]);
  header.isCompressed = (format & kCompressedBits) != 0;
  header.format = static_cast<int>(format & ~kCompressedBits);
  if (header.format >= static_cast<int>(std::size(kFormats))) {
    return refuse("its points are of format " + std::to_string(header.format) +
                  ", known are 0 to 10");
  }
  const Format& known = kFormats[header.format];
  header.colorAt = known.colorAt;
  if (header.recordLength < known.shortest) {
    return refuse("its point records of " + std::to_string(header.recordLength) +
                  " bytes are too short for format " + std::to_string(header.format));
  }
  if (headerSize < kShortestHeader || header.pointsAt < headerSize || header.pointsAt > fileSize) {
    return refuse("its points do not begin inside the file");
  }
  header.points =
      std::min(header.claimedPoints, (fileSize - header.pointsAt) / header.recordLength);
  return {};
}

}  // namespace

bool LasHeader::hasBox() const {
  for (int axis = 0; axis < 2; ++axis) {
    if (!(minimum[axis] <= maximum[axis]) || !(std::fabs(minimum[axis]) <= kLargestOffset) ||
        !(std::fabs(maximum[axis]) <= kLargestOffset)) {
      return false;
    }
  }
  return true;
}

Result<LasHeader> parseLasHeader(const std::string& bytes, std::uint64_t fileSize) {
  if (bytes.compare(0, 4, "LASF") != 0) return refuse("this is no LAS file");
  if (bytes.size() < kShortestHeader) return refuse("the file ends inside its header");
  LasHeader header;
  const int major = static_cast<unsigned char>(bytes[kMajorAt]);
  header.minorVersion = static_cast<unsigned char>(bytes[kMinorAt]);
  if (major != 1 || header.minorVersion > 4) {
    return refuse("it is of LAS version " + std::to_string(major) + "." +
                  std::to_string(header.minorVersion) + ", known are 1.0 to 1.4");
  }
  Status status = readLayout(bytes, fileSize, header);
  if (status) status = readPlacement(bytes, header);
  if (!status) return status;
  return header;
}

}  // namespace tarn::host
