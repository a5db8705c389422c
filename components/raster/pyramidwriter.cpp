#include "components/raster/pyramidwriter.h"

#include <algorithm>
#include <utility>

#include "components/raster/gdalaccess.h"
#include "components/raster/jpegtile.h"
#include "components/raster/pyramidstamp.h"
#include "components/raster/tiffdirectory.h"

namespace tarn::raster {
namespace {

constexpr int kQuality = 90;
constexpr size_t kSamples = 64;
constexpr uint64_t kTilePixels = static_cast<uint64_t>(kPyramidTile) * kPyramidTile;

void putNumber(std::vector<uint8_t>& out, uint64_t value, unsigned bytes) {
  for (unsigned i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

enum FieldType : uint16_t { kText = 2, kShort = 3, kLong = 4, kLong8 = 16 };

struct Entry {
  uint16_t tag = 0;
  FieldType type = kShort;
  std::vector<uint64_t> values;
};

unsigned sizeOf(FieldType type) {
  return type == kText ? 1 : type == kShort ? 2 : type == kLong ? 4 : 8;
}

/// Appends one directory that will stand at `base + out.size()`.
void putDirectory(std::vector<uint8_t>& out, uint64_t base, const std::vector<Entry>& entries,
                  bool big, bool last) {
  const unsigned word = big ? 8 : 4, countBytes = big ? 8 : 2;
  const uint64_t start = base + out.size();
  uint64_t extraAt = start + countBytes + entries.size() * (4 + 2 * word) + word;
  std::vector<uint8_t> extra;
  putNumber(out, entries.size(), countBytes);
  for (const Entry& entry : entries) {
    putNumber(out, entry.tag, 2);
    putNumber(out, entry.type, 2);
    putNumber(out, entry.values.size(), word);
    std::vector<uint8_t> bytes;
    for (const uint64_t value : entry.values) putNumber(bytes, value, sizeOf(entry.type));
    if (bytes.size() <= word) {
      bytes.resize(word);
      out.insert(out.end(), bytes.begin(), bytes.end());
    } else {
      putNumber(out, extraAt + extra.size(), word);
      extra.insert(extra.end(), bytes.begin(), bytes.end());
      extra.resize((extra.size() + 7) / 8 * 8);
    }
  }
  const uint64_t next = (extraAt + extra.size() + 7) / 8 * 8;
  putNumber(out, last ? 0 : next, word);
  out.insert(out.end(), extra.begin(), extra.end());
  out.resize(next - base);
}

}  // namespace

Status PyramidWriter::create(const std::string& path, PyramidForm form) {
  path_ = path;
  form_ = std::move(form);
  tileCount_ = 0;
  for (const LevelSize& size : form_.levels) {
    Level level;
    level.columns = (size.width + kPyramidTile - 1) / kPyramidTile;
    level.rows = (size.height + kPyramidTile - 1) / kPyramidTile;
    level.offsets.resize(static_cast<size_t>(level.columns) * level.rows);
    level.byteCounts.resize(level.offsets.size());
    tileCount_ += level.offsets.size();
    levels_.push_back(std::move(level));
  }
  big_ = tileCount_ * kTilePixels * form_.channels > form_.classicLimit;
  end_ = 16;
  return file_.create(path);
}

Status PyramidWriter::writeTile(size_t level, int column, int row, const uint8_t* pixels) {
  Level& target = levels_[level];
  const size_t index = static_cast<size_t>(row) * target.columns + column;
  std::vector<uint8_t> stream;
  const uint8_t* bytes = pixels;
  uint64_t count = kTilePixels * form_.channels;
  if (form_.lossy) {
    if (!encodeJpegTile(pixels, kPyramidTile, kPyramidTile, form_.channels, kQuality, stream))
      return Status::error(path_ + ": a tile cannot be compressed");
    bytes = stream.data();
    count = stream.size();
  }
  const uint64_t offset = end_.fetch_add((count + 15) / 16 * 16);
  target.offsets[index] = offset;
  target.byteCounts[index] = count;
  if (index % std::max<size_t>(1, tileCount_ / kSamples) == 0) {
    const Sample sample{offset, count, hashBytes(bytes, count)};
    const std::lock_guard<std::mutex> lock(mutex_);
    samples_.push_back(sample);
  }
  return file_.writeAt(offset, bytes, count);
}

void PyramidWriter::addDirectory(std::vector<uint8_t>& out, uint64_t base, size_t level,
                                 bool last) const {
  const LevelSize size = form_.levels[level];
  const bool colour = form_.channels == 3;
  const uint64_t photometric = !colour       ? tiff::kMinIsBlack
                               : form_.lossy ? tiff::kYCbCr
                                             : tiff::kRgb;
  const FieldType place = big_ ? kLong8 : kLong;
  std::vector<Entry> entries = {
      {254, kLong, {tiff::kReducedImage}},
      {256, kLong, {static_cast<uint64_t>(size.width)}},
      {257, kLong, {static_cast<uint64_t>(size.height)}},
      {258, kShort, std::vector<uint64_t>(form_.channels, 8)},
      {259, kShort, {form_.lossy ? tiff::kJpeg : tiff::kNone}},
      {262, kShort, {photometric}},
      {277, kShort, {static_cast<uint64_t>(form_.channels)}},
      {284, kShort, {1}},
      {322, kShort, {kPyramidTile}},
      {323, kShort, {kPyramidTile}},
      {324, place, levels_[level].offsets},
      {325, kLong, levels_[level].byteCounts},
  };
  if (photometric == tiff::kYCbCr) entries.push_back({530, kShort, {2, 2}});
  if (level == 0) {
    Entry text{42112, kText, {form_.metadata.begin(), form_.metadata.end()}};
    text.values.push_back(0);
    entries.push_back(std::move(text));
  }
  putDirectory(out, base, entries, big_, last);
}

Status PyramidWriter::finish() {
  const uint64_t base = end_;
  std::vector<uint8_t> directories;
  for (size_t i = 0; i < levels_.size(); ++i) {
    addDirectory(directories, base, i, i + 1 == levels_.size());
  }
  if (!big_ && base + directories.size() > UINT32_MAX)
    return Status::error(path_ + ": is larger than its form allows");
  std::vector<uint8_t> header = {'I', 'I'};
  putNumber(header, big_ ? 43 : 42, 2);
  if (big_) putNumber(header, 8, 4);
  putNumber(header, base, big_ ? 8 : 4);
  if (Status written = file_.writeAt(base, directories.data(), directories.size()); !written)
    return written;
  if (Status written = file_.writeAt(0, header.data(), header.size()); !written) return written;
  return file_.finish();
}

Status PyramidWriter::check() const {
  Status damaged = Status::error(path_ + ": cannot be read back as it was written");
  RandomFile file;
  if (Status opened = file.open(path_); !opened) return opened;
  auto directories = readTiffDirectories(file, fileTimes(path_).size);
  if (!directories || directories.value().size() != levels_.size()) return damaged;
  for (size_t i = 0; i < levels_.size(); ++i) {
    const TiffDirectory& found = directories.value()[i];
    if (found.width != static_cast<uint32_t>(form_.levels[i].width) ||
        found.height != static_cast<uint32_t>(form_.levels[i].height) ||
        found.samples != form_.channels || found.offsets != levels_[i].offsets ||
        found.byteCounts != levels_[i].byteCounts)
      return damaged;
  }
  std::vector<uint8_t> bytes;
  for (const Sample& sample : samples_) {
    bytes.resize(sample.bytes);
    if (!file.readAt(sample.offset, bytes.data(), bytes.size()) ||
        hashBytes(bytes.data(), bytes.size()) != sample.hash)
      return damaged;
  }
  const GuardedImage guarded(path_);
  return guarded.open() ? Status::ok() : damaged;
}

}  // namespace tarn::raster
