#include "components/raster/tiffdirectory.h"

#include <algorithm>
#include <set>

namespace tarn::raster {
namespace {

constexpr size_t kMostDirectories = 256;

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
  uint16_t tag = 0;
  uint16_t type = 0;
  uint64_t count = 0;
  uint64_t offset = 0;
};

class Parser {
 public:
  Parser(const RandomFile& file, uint64_t size) : file_(file), size_(size) {}

  Status run(std::vector<TiffDirectory>& out) {
    uint64_t at = 0;
    if (Status header = readHeader(at); !header) return header;
    std::set<uint64_t> seen;
    while (at != 0 && seen.insert(at).second && out.size() < kMostDirectories) {
      TiffDirectory directory;
      uint64_t next = 0;
      if (!readDirectory(at, directory, next)) {
        // What follows a whole first picture is extra: a damaged chain behind it ends there.
        if (out.empty()) return Status::error("its directory is damaged or cut off");
        break;
      }
      out.push_back(std::move(directory));
      at = next;
    }
    return out.empty() ? Status::error("has no directory") : Status::ok();
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
    uint64_t rowsPerStrip = UINT32_MAX;
    bits_ = format_ = {};
    fillOrder_ = 1;
    for (uint64_t i = 0; i < entries; ++i) {
      const uint8_t* entry = bytes.data() + i * entryBytes;
      Field field;
      field.tag = static_cast<uint16_t>(number(entry, 2));
      field.type = static_cast<uint16_t>(number(entry + 2, 2));
      field.count = number(entry + 4, wordBytes);
      const uint64_t valueAt = at + countBytes + i * entryBytes + 4 + wordBytes;
      const unsigned unit = typeSize(field.type);
      if (unit == 0 || field.count == 0 || field.count > size_) continue;
      field.offset =
          unit * field.count <= wordBytes ? valueAt : number(entry + 4 + wordBytes, wordBytes);
      if (!takeField(field, out, rowsPerStrip)) return false;
    }
    next = number(bytes.data() + entries * entryBytes, wordBytes);
    return finish(out, rowsPerStrip);
  }

  bool values(const Field& field, std::vector<uint64_t>& out) const {
    const unsigned unit = typeSize(field.type);
    std::vector<uint8_t> bytes;
    if (field.count > size_ / unit) return false;
    bytes.resize(field.count * unit);
    if (!read(field.offset, bytes.data(), bytes.size())) return false;
    out.resize(field.count);
    for (size_t i = 0; i < out.size(); ++i) out[i] = number(bytes.data() + i * unit, unit);
    return true;
  }

  bool takeField(const Field& field, TiffDirectory& out, uint64_t& rowsPerStrip) {
    static const std::set<uint16_t> kWanted = {254, 256, 257, 258, 259, 262, 266, 273, 277, 278,
                                               279, 284, 322, 323, 324, 325, 338, 339, 347, 42112};
    if (kWanted.count(field.tag) == 0) return true;
    if (field.tag == 347 || field.tag == 42112) {
      if (field.count > size_) return false;
      std::vector<uint8_t> bytes(field.count);
      if (!read(field.offset, bytes.data(), bytes.size())) return false;
      if (field.tag == 347) {
        out.jpegTables = std::move(bytes);
      } else {
        out.gdalMetadata.assign(bytes.begin(), std::find(bytes.begin(), bytes.end(), 0));
      }
      return true;
    }
    std::vector<uint64_t> list;
    if (!values(field, list)) return false;
    const auto small = static_cast<uint32_t>(std::min<uint64_t>(list[0], UINT32_MAX));
    const auto word = static_cast<uint16_t>(std::min<uint64_t>(list[0], UINT16_MAX));
    switch (field.tag) {
      case 254:
        out.subfileType = small;
        break;
      case 256:
        out.width = small;
        break;
      case 257:
        out.height = small;
        break;
      case 258:
        bits_ = std::move(list);
        break;
      case 259:
        out.compression = word;
        break;
      case 262:
        out.photometric = word;
        break;
      case 266:
        fillOrder_ = word;
        break;
      case 277:
        out.samples = word;
        break;
      case 278:
        rowsPerStrip = list[0];
        break;
      case 284:
        out.planar = word == 2;
        break;
      case 322:
        out.blockWidth = small;
        break;
      case 323:
        out.blockHeight = small;
        break;
      case 338:
        out.alphaMultiplied = word == 1;
        break;
      case 273:
      case 324:
        out.offsets = std::move(list);
        break;
      case 279:
      case 325:
        out.byteCounts = std::move(list);
        break;
      default:
        format_ = std::move(list);
        break;
    }
    out.tiled = out.tiled || field.tag == 322;
    return true;
  }

  bool finish(TiffDirectory& out, uint64_t rowsPerStrip) const {
    if (out.width == 0 || out.height == 0 || out.width > INT32_MAX || out.height > INT32_MAX)
      return false;
    if (!out.tiled) {
      out.blockWidth = out.width;
      out.blockHeight = static_cast<uint32_t>(std::min<uint64_t>(rowsPerStrip, out.height));
    }
    if (out.blockWidth == 0 || out.blockHeight == 0) return false;
    const uint64_t blocks = static_cast<uint64_t>(out.blocksAcross()) * out.blocksDown() *
                            (out.planar ? out.samples : 1);
    // A file without byte counts (or with too few) is GDAL's to repair; it is then not read here.
    const bool known = out.offsets.size() >= blocks && out.byteCounts.size() >= blocks &&
                       out.blockWidth <= INT32_MAX / 2 && out.blockHeight <= INT32_MAX / 2;
    const auto all = [](const std::vector<uint64_t>& list, uint64_t value) {
      return std::all_of(list.begin(), list.end(), [value](uint64_t v) { return v == value; });
    };
    out.plainBytes = known && fillOrder_ == 1 && !bits_.empty() && all(bits_, 8) && all(format_, 1);
    return true;
  }

  const RandomFile& file_;
  uint64_t size_;
  bool little_ = true;
  bool big_ = false;
  uint16_t fillOrder_ = 1;
  std::vector<uint64_t> bits_;
  std::vector<uint64_t> format_;
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

Result<std::vector<TiffDirectory>> readTiffDirectories(const RandomFile& file, uint64_t fileSize) {
  std::vector<TiffDirectory> directories;
  Parser parser(file, fileSize);
  if (Status status = parser.run(directories); !status) return status;
  if (!blocksAreInside(directories.front(), fileSize))
    return Status::error("is cut short: its pixels lie behind the end of the file");
  return directories;
}

}  // namespace tarn::raster
