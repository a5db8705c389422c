#include "tools/tarnortho/tiffwriter.h"

#include <array>
#include <cstring>
#include <vector>

namespace tarn::ortho {
namespace {

constexpr uint32_t kRowsPerStrip = 16;

/// Collects the fields of one TIFF directory and the values that do not fit into them.
class Directory {
 public:
  explicit Directory(uint32_t valueOffset) : valueOffset_(valueOffset) {}

  void addShort(uint16_t tag, uint16_t value) { field(tag, 3, 1, value); }
  void addLong(uint16_t tag, uint32_t value) { field(tag, 4, 1, value); }
  template <typename T>
  void addArray(uint16_t tag, uint16_t type, const std::vector<T>& values) {
    field(tag, type, static_cast<uint32_t>(values.size()),
          valueOffset_ + static_cast<uint32_t>(values_.size()));
    const auto* bytes = reinterpret_cast<const char*>(values.data());
    values_.append(bytes, values.size() * sizeof(T));
  }

  std::string bytes() const {
    const auto count = static_cast<uint16_t>(fields_.size() / 12);
    std::string out(reinterpret_cast<const char*>(&count), 2);
    out += fields_ + std::string(4, '\0');
    return out;
  }
  const std::string& values() const { return values_; }

 private:
  void field(uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    std::array<char, 12> entry{};
    std::memcpy(entry.data(), &tag, 2);
    std::memcpy(entry.data() + 2, &type, 2);
    std::memcpy(entry.data() + 4, &count, 4);
    std::memcpy(entry.data() + 8, &value, type == 3 ? 2 : 4);
    fields_.append(entry.data(), entry.size());
  }

  uint32_t valueOffset_;
  std::string fields_;
  std::string values_;
};

}  // namespace

Status TiffWriter::open(const std::string& path, uint32_t width, uint32_t height,
                        const GeoReference& geo) {
  rowBytes_ = uint64_t{width} * 3;
  if (width == 0 || height == 0 || rowBytes_ * height > 4200000000ULL) {
    return Status::error(path + ": width times height must lie between 1 and 1400 million pixels");
  }
  const uint32_t strips = (height + kRowsPerStrip - 1) / kRowsPerStrip;
  constexpr uint32_t kFields = 14;
  constexpr uint32_t kValues = 8 + 2 + kFields * 12 + 4;
  const uint64_t valueBytes = 6 + 24 + 48 + 32 + uint64_t{strips} * 8;
  pixelOffset_ = (kValues + valueBytes + 4095) / 4096 * 4096;

  std::vector<uint32_t> offsets;
  std::vector<uint32_t> counts;
  for (uint32_t strip = 0; strip < strips; ++strip) {
    const uint32_t first = strip * kRowsPerStrip;
    offsets.push_back(static_cast<uint32_t>(pixelOffset_ + first * rowBytes_));
    counts.push_back(static_cast<uint32_t>(std::min(kRowsPerStrip, height - first) * rowBytes_));
  }
  Directory directory(kValues);
  directory.addLong(256, width);
  directory.addLong(257, height);
  directory.addArray<uint16_t>(258, 3, {8, 8, 8});
  directory.addShort(259, 1);  // no compression
  directory.addShort(262, 2);  // RGB
  directory.addArray(273, 4, offsets);
  directory.addShort(277, 3);
  directory.addLong(278, kRowsPerStrip);
  directory.addArray(279, 4, counts);
  directory.addShort(284, 1);  // pixel by pixel
  directory.addShort(339, 1);  // unsigned
  directory.addArray<double>(33550, 12, {geo.pixelSize, geo.pixelSize, 0});
  directory.addArray<double>(33922, 12, {0, 0, 0, geo.left, geo.top, 0});
  directory.addArray<uint16_t>(34735, 3,
                               {1, 1, 0, 3, 1024, 0, 1, 1, 1025, 0, 1, 1, 3072, 0, 1, geo.epsg});

  const std::array<char, 8> header = {'I', 'I', 42, 0, 8, 0, 0, 0};
  const std::string head =
      std::string(header.data(), header.size()) + directory.bytes() + directory.values();
  Status status = file_.create(path);
  if (status) status = file_.writeAt(0, head.data(), head.size());
  return status;
}

Status TiffWriter::writeRows(uint32_t firstRow, Span<const uint8_t> pixels) {
  return file_.writeAt(pixelOffset_ + firstRow * rowBytes_, pixels.data(), pixels.size());
}

Status TiffWriter::finish() {
  return file_.finish();
}

}  // namespace tarn::ortho
