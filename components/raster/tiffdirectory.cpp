#include "components/raster/tiffdirectory.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>

namespace tarn::raster {
namespace {

constexpr size_t kMostDirectories = 256;
constexpr uint64_t kMostBlocks = 16 << 20;
constexpr uint64_t kMostTextBytes = 1 << 20;
// What is kept of all directories together; several may share one long list in a small file.
constexpr uint64_t kMostKeptBytes = 512 << 20;

/// Bytes of a TIFF field type; 0 for types that are not numbers or texts.
unsigned typeSize(uint16_t type) {
  switch (type) {
    case 1:  // byte
    case 2:  // text
    case 7:  // undefined
      return 1;
    case 3:  // short
      return 2;
    case 4:   // long
    case 13:  // directory
      return 4;
    case 16:  // long8
    case 18:  // directory8
      return 8;
    default:
      return 0;
  }
}

struct Field {
  uint16_t type = 0;
  uint64_t count = 0;
  uint64_t offset = 0;
};
using Fields = std::map<uint16_t, Field>;

class Parser {
 public:
  Parser(const RandomBytes& file, uint64_t size) : file_(file), size_(size) {}

  Status run(std::vector<TiffDirectory>& out) {
    uint64_t at = 0;
    if (Status header = readHeader(at); !header) return header;
    std::set<uint64_t> seen;
    uint64_t kept = 0;
    while (at != 0 && seen.insert(at).second && out.size() < kMostDirectories &&
           kept < kMostKeptBytes) {
      TiffDirectory directory;
      uint64_t next = 0;
      if (!readDirectory(at, directory, next)) {
        // What follows a whole first picture is extra: a damaged chain behind it ends there.
        if (out.empty()) return Status::error("its directory is damaged or cut off");
        break;
      }
      kept += (directory.offsets.size() + directory.byteCounts.size()) * sizeof(uint64_t) +
              directory.jpegTables.size() + directory.gdalMetadata.size();
      out.push_back(std::move(directory));
      at = next;
    }
    return out.empty() ? Status::error("has no directory") : Status::ok();
  }

  bool hasMoreThan(size_t most) {
    uint64_t at = 0;
    if (!readHeader(at)) return false;
    const unsigned countBytes = big_ ? 8 : 2, entryBytes = big_ ? 20 : 12, wordBytes = big_ ? 8 : 4;
    std::set<uint64_t> seen;
    uint8_t bytes[8] = {};
    while (at != 0 && seen.insert(at).second && seen.size() <= most) {
      if (!read(at, bytes, countBytes)) break;
      const uint64_t entries = std::min<uint64_t>(number(bytes, countBytes), UINT16_MAX);
      if (!read(at + countBytes + entries * entryBytes, bytes, wordBytes)) break;
      at = number(bytes, wordBytes);
    }
    return seen.size() > most;
  }

 private:
  uint64_t number(const uint8_t* p, unsigned bytes) const {
    uint64_t value = 0;
    for (unsigned i = 0; i < bytes; ++i) value = value << 8 | p[little_ ? bytes - 1 - i : i];
    return value;
  }

  bool read(uint64_t offset, void* out, uint64_t bytes) const {
    return offset <= size_ && bytes <= size_ - offset && file_.readAt(offset, out, bytes);
  }

  Status readHeader(uint64_t& first) {
    uint8_t head[16] = {};
    if (!read(0, head, 8)) return Status::error("is shorter than a TIFF header");
    little_ = head[0] == 'I' && head[1] == 'I';
    if (!little_ && !(head[0] == 'M' && head[1] == 'M')) return Status::error("is no TIFF");
    const uint64_t version = number(head + 2, 2);
    big_ = version == 43;
    if (!big_ && version != 42) return Status::error("is no TIFF");
    if (big_ && !read(0, head, 16)) return Status::error("is shorter than a TIFF header");
    first = big_ ? number(head + 8, 8) : number(head + 4, 4);
    return Status::ok();
  }

  bool readDirectory(uint64_t at, TiffDirectory& out, uint64_t& next) {
    const unsigned countBytes = big_ ? 8 : 2, entryBytes = big_ ? 20 : 12, wordBytes = big_ ? 8 : 4;
    uint8_t count[8] = {};
    if (!read(at, count, countBytes)) return false;
    const uint64_t entries = number(count, countBytes);
    if (entries == 0 || entries > 4096) return false;
    std::vector<uint8_t> bytes(entries * entryBytes + wordBytes);
    if (!read(at + countBytes, bytes.data(), bytes.size())) return false;
    Fields fields;
    for (uint64_t i = 0; i < entries; ++i) {
      const uint8_t* entry = bytes.data() + i * entryBytes;
      Field field;
      field.type = static_cast<uint16_t>(number(entry + 2, 2));
      field.count = number(entry + 4, wordBytes);
      const uint64_t valueAt = at + countBytes + i * entryBytes + 4 + wordBytes;
      const unsigned unit = typeSize(field.type);
      if (unit == 0 || field.count == 0 || field.count > size_ / unit) continue;
      field.offset =
          unit * field.count <= wordBytes ? valueAt : number(entry + 4 + wordBytes, wordBytes);
      // Of a field that comes twice the first counts.
      fields.emplace(static_cast<uint16_t>(number(entry, 2)), field);
    }
    next = number(bytes.data() + entries * entryBytes, wordBytes);
    return takeShape(fields, out) && takeBlocks(fields, out) && takeExtras(fields, out);
  }

  /// At most `most` values of a field; false when they lie outside the file.
  bool values(const Field& field, uint64_t most, std::vector<uint64_t>& out) const {
    const unsigned unit = typeSize(field.type);
    out.resize(std::min(field.count, most));
    std::vector<uint8_t> bytes(out.size() * unit);
    if (!read(field.offset, bytes.data(), bytes.size())) return false;
    for (size_t i = 0; i < out.size(); ++i) out[i] = number(bytes.data() + i * unit, unit);
    return true;
  }

  bool values(const Fields& fields, uint16_t tag, uint64_t most, std::vector<uint64_t>& out) const {
    const auto found = fields.find(tag);
    return found == fields.end() || values(found->second, most, out);
  }

  /// The first value of a field, cut to the type; `value` stays when there is no such field.
  template <typename Number>
  bool first(const Fields& fields, uint16_t tag, Number& value) const {
    std::vector<uint64_t> list;
    if (!values(fields, tag, 1, list)) return false;
    constexpr auto kMost = static_cast<uint64_t>(std::numeric_limits<Number>::max());
    if (!list.empty()) value = static_cast<Number>(std::min(list[0], kMost));
    return true;
  }

  bool takeShape(const Fields& fields, TiffDirectory& out) const {
    uint32_t rowsPerStrip = UINT32_MAX;
    uint16_t planes = 1, extraSample = 0;
    if (!first(fields, 254, out.subfileType) || !first(fields, 256, out.width) ||
        !first(fields, 257, out.height) || !first(fields, 259, out.compression) ||
        !first(fields, 262, out.photometric) || !first(fields, 277, out.samples) ||
        !first(fields, 278, rowsPerStrip) || !first(fields, 284, planes) ||
        !first(fields, 338, extraSample) || !first(fields, 322, out.blockWidth) ||
        !first(fields, 323, out.blockHeight))
      return false;
    out.planar = planes == 2;
    out.alphaMultiplied = extraSample == 1;
    out.tiled = fields.count(322) != 0;
    if (out.width == 0 || out.height == 0 || out.width > INT32_MAX || out.height > INT32_MAX)
      return false;
    if (!out.tiled) {
      out.blockWidth = out.width;
      out.blockHeight = std::min(rowsPerStrip, out.height);
    }
    return out.blockWidth > 0 && out.blockHeight > 0;
  }

  bool takeBlocks(const Fields& fields, TiffDirectory& out) const {
    // Blocks larger than any picture are GDAL's to judge.
    if (out.blockWidth > INT32_MAX / 2 || out.blockHeight > INT32_MAX / 2) return true;
    const uint64_t planes = out.planar ? std::max<uint64_t>(1, out.samples) : 1;
    const uint64_t across = out.blocksAcross(), down = out.blocksDown();
    if (across * down > kMostBlocks / planes) return true;
    const uint64_t blocks = across * down * planes;
    if (!values(fields, out.tiled ? 324 : 273, blocks, out.offsets) ||
        !values(fields, out.tiled ? 325 : 279, blocks, out.byteCounts))
      return false;
    std::vector<uint64_t> bits, format;
    uint16_t fillOrder = 1;
    if (!values(fields, 258, UINT16_MAX, bits) || !values(fields, 339, UINT16_MAX, format) ||
        !first(fields, 266, fillOrder))
      return false;
    // A file without byte counts (or with too few) is GDAL's to repair; it is then not read here.
    const bool known = out.offsets.size() == blocks && out.byteCounts.size() == blocks;
    const auto all = [](const std::vector<uint64_t>& list, uint64_t value) {
      return std::all_of(list.begin(), list.end(), [value](uint64_t v) { return v == value; });
    };
    out.plainBytes = known && fillOrder == 1 && !bits.empty() && all(bits, 8) && all(format, 1);
    return true;
  }

  bool takeExtras(const Fields& fields, TiffDirectory& out) const {
    const auto text = [&](uint16_t tag, auto& target) {
      const auto found = fields.find(tag);
      if (found == fields.end() || found->second.count > kMostTextBytes) return true;
      std::vector<uint8_t> bytes(found->second.count);
      if (!read(found->second.offset, bytes.data(), bytes.size())) return false;
      target.assign(bytes.begin(), bytes.end());
      return true;
    };
    if (!text(347, out.jpegTables) || !text(42112, out.gdalMetadata)) return false;
    out.gdalMetadata.erase(std::find(out.gdalMetadata.begin(), out.gdalMetadata.end(), '\0'),
                           out.gdalMetadata.end());
    return true;
  }

  const RandomBytes& file_;
  uint64_t size_;
  bool little_ = true;
  bool big_ = false;
};

bool blocksAreInside(const TiffDirectory& directory, uint64_t fileSize) {
  const size_t known = std::min(directory.offsets.size(), directory.byteCounts.size());
  for (size_t i = 0; i < known; ++i) {
    const uint64_t offset = directory.offsets[i], bytes = directory.byteCounts[i];
    if (bytes != 0 && offset != 0 && (offset > fileSize || bytes > fileSize - offset)) return false;
  }
  return true;
}

}  // namespace

bool TiffDirectory::isPlainPicture() const {
  const bool gray = samples == 1 && photometric == tiff::kMinIsBlack;
  const bool colour =
      samples == 3 && !planar &&
      (photometric == tiff::kRgb || (photometric == tiff::kYCbCr && compression == tiff::kJpeg));
  return plainBytes && (gray || colour);
}

bool hasMorePicturesThan(const RandomBytes& file, uint64_t fileSize, size_t most) {
  return Parser(file, fileSize).hasMoreThan(most);
}

Result<std::vector<TiffDirectory>> readTiffDirectories(const RandomBytes& file, uint64_t fileSize) {
  std::vector<TiffDirectory> directories;
  Parser parser(file, fileSize);
  if (Status status = parser.run(directories); !status) return status;
  if (!blocksAreInside(directories.front(), fileSize))
    return Status::error("is cut short: its pixels lie behind the end of the file");
  const auto outside = std::find_if_not(
      directories.begin(), directories.end(),
      [fileSize](const TiffDirectory& directory) { return blocksAreInside(directory, fileSize); });
  directories.erase(outside, directories.end());
  return directories;
}

}  // namespace tarn::raster
