#include "host/pointcloud/lasreader.h"

#include <algorithm>
#include <cstring>

namespace tarn::host {

namespace {

constexpr size_t kReadBytes = size_t{1} << 22;
constexpr size_t kFlagsAt = 15;
constexpr int kFirstWideFormat = 6;
constexpr unsigned kWithheldBit = 0x80;      // of the class byte, formats 0 to 5
constexpr unsigned kWideWithheldBit = 0x04;  // of the flags byte, formats 6 to 10

LasPoint decode(const unsigned char* record, const LasHeader& header) {
  LasPoint point;
  std::memcpy(&point.x, record, 4);
  std::memcpy(&point.y, record + 4, 4);
  std::memcpy(&point.z, record + 8, 4);
  if (header.colorAt >= 0) std::memcpy(point.rgb, record + header.colorAt, sizeof point.rgb);
  const unsigned bit = header.format < kFirstWideFormat ? kWithheldBit : kWideWithheldBit;
  point.isWithheld = (record[kFlagsAt] & bit) != 0;
  return point;
}

}  // namespace

Status LasReader::open(const std::string& path) {
  // The system's reason stands behind the name in its message.
  if (fileKind(path) == FileKind::kMissing) return Status::error("there is no such file");
  if (const Status opened = file_.open(path); !opened) {
    return Status::error("it cannot be opened for reading");
  }
  const std::uint64_t size = fileTimes(path).size;
  std::string bytes(std::min<std::uint64_t>(size, kLasHeaderBytes), '\0');
  if (!file_.readAt(0, bytes.data(), bytes.size())) return Status::error("it cannot be read");
  auto header = parseLasHeader(bytes, size);
  if (!header) return header.status();
  header_ = header.take();
  return {};
}

bool LasReader::read(std::uint64_t first, size_t count, std::vector<LasPoint>& out) {
  out.clear();
  if (first > header_.points || count > header_.points - first) return false;
  out.reserve(count);
  const size_t length = header_.recordLength;
  const size_t most = std::max<size_t>(1, kReadBytes / length);
  while (count > 0) {
    const size_t records = std::min(count, most);
    bytes_.resize(records * length);
    if (!file_.readAt(header_.pointsAt + first * length, bytes_.data(), bytes_.size()))
      return false;
    for (size_t i = 0; i < records; ++i) out.push_back(decode(bytes_.data() + i * length, header_));
    first += records;
    count -= records;
  }
  return true;
}

}  // namespace tarn::host
