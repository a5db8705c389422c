#include "components/raster/tifftags.h"

#include <algorithm>
#include <array>

#include "base/file.h"

namespace tarn::raster {
namespace {

constexpr uint64_t kMostSmallFile = 64 << 20;

unsigned bytesOf(TagType type) {
  switch (type) {
    case TagType::kText:
      return 1;
    case TagType::kShort:
      return 2;
    case TagType::kLong:
      return 4;
    case TagType::kLong8:
      break;
  }
  return 8;
}

/// Bytes of one value of any TIFF type; 0 for types that there are not.
unsigned bytesOfType(uint64_t type) {
  constexpr std::array<unsigned, 19> kSizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4,
                                               8, 4, 8, 4, 0, 0, 8, 8, 8};
  return type < kSizes.size() ? kSizes[type] : 0;
}

/// What says how pixels are stored is the writer's own.
bool tellsOfStorage(uint64_t tag) {
  constexpr std::array<uint64_t, 21> kStorage = {254, 255, 256, 257, 258, 259, 262,
                                                 266, 273, 274, 277, 278, 279, 284,
                                                 317, 322, 323, 324, 325, 347, 530};
  return std::find(kStorage.begin(), kStorage.end(), tag) != kStorage.end();
}

uint64_t numberAt(const std::string& file, uint64_t at, unsigned bytes) {
  uint64_t value = 0;
  for (unsigned i = bytes; i-- > 0;) value = value << 8 | static_cast<uint8_t>(file[at + i]);
  return value;
}

}  // namespace

void putNumber(std::vector<uint8_t>& out, uint64_t value, unsigned bytes) {
  for (unsigned i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

TiffTag numbersTag(uint16_t tag, TagType type, const std::vector<uint64_t>& values) {
  TiffTag made{tag, static_cast<uint16_t>(type), values.size(), {}};
  made.bytes.reserve(values.size() * bytesOf(type));
  for (const uint64_t value : values) putNumber(made.bytes, value, bytesOf(type));
  return made;
}

TiffTag textTag(uint16_t tag, const std::string& text) {
  TiffTag made{tag, static_cast<uint16_t>(TagType::kText), text.size() + 1, {}};
  made.bytes.assign(text.begin(), text.end());
  made.bytes.push_back(0);
  return made;
}

TiffTag metadataTag(const std::string& xml) {
  constexpr uint16_t kGdalMetadata = 42112;
  return textTag(kGdalMetadata, xml);
}

void putDirectory(std::vector<uint8_t>& out, uint64_t base, const std::vector<TiffTag>& tags,
                  bool big, bool last) {
  const unsigned word = big ? 8 : 4, countBytes = big ? 8 : 2;
  const uint64_t start = base + out.size();
  const uint64_t extraAt = (start + countBytes + tags.size() * (4 + 2 * word) + word + 7) / 8 * 8;
  std::vector<uint8_t> extra;
  putNumber(out, tags.size(), countBytes);
  for (const TiffTag& tag : tags) {
    putNumber(out, tag.tag, 2);
    putNumber(out, tag.type, 2);
    putNumber(out, tag.count, word);
    if (tag.bytes.size() <= word) {
      out.insert(out.end(), tag.bytes.begin(), tag.bytes.end());
      out.resize(out.size() + word - tag.bytes.size());
    } else {
      putNumber(out, extraAt + extra.size(), word);
      extra.insert(extra.end(), tag.bytes.begin(), tag.bytes.end());
      extra.resize((extra.size() + 7) / 8 * 8);
    }
  }
  const uint64_t next = extraAt + extra.size();
  putNumber(out, last ? 0 : next, word);
  out.resize(extraAt - base);
  out.insert(out.end(), extra.begin(), extra.end());
}

Result<std::vector<TiffTag>> readDescribingTags(const std::string& path) {
  Result<std::string> read = readFile(path, kMostSmallFile);
  if (!read) return read.status();
  const std::string& file = read.value();
  const Status damaged = Status::error(path + ": its directory cannot be read");
  if (file.size() < 8 || file.compare(0, 4, std::string("II*\0", 4)) != 0) return damaged;
  const uint64_t at = numberAt(file, 4, 4);
  if (at + 2 > file.size()) return damaged;
  const uint64_t count = numberAt(file, at, 2);
  if (at + 2 + count * 12 > file.size()) return damaged;
  std::vector<TiffTag> tags;
  for (uint64_t i = 0; i < count; ++i) {
    const uint64_t entry = at + 2 + i * 12;
    TiffTag tag;
    tag.tag = static_cast<uint16_t>(numberAt(file, entry, 2));
    tag.type = static_cast<uint16_t>(numberAt(file, entry + 2, 2));
    tag.count = numberAt(file, entry + 4, 4);
    if (tellsOfStorage(tag.tag)) continue;
    const uint64_t bytes = tag.count * bytesOfType(tag.type);
    const uint64_t from = bytes <= 4 ? entry + 8 : numberAt(file, entry + 8, 4);
    if (bytes == 0 || from > file.size() || bytes > file.size() - from) return damaged;
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(from);
    tag.bytes.assign(begin, begin + static_cast<std::ptrdiff_t>(bytes));
    tags.push_back(std::move(tag));
  }
  return tags;
}

}  // namespace tarn::raster
