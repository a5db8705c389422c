#include "components/raster/tiledtiffwriter.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include "components/raster/gdalaccess.h"
#include "components/raster/pyramidstamp.h"
#include "components/raster/tiffdirectory.h"

namespace tarn::raster {
namespace {

constexpr size_t kSamples = 64;
constexpr uint64_t kTilePixels = static_cast<uint64_t>(kPyramidTile) * kPyramidTile;
constexpr uint64_t kAlignment = 16;
// Tiles of a cloud-optimised file stand between their size and their last four bytes once more.
constexpr uint64_t kFrame = 4;
constexpr size_t kCopyBytes = 4 << 20;

uint64_t storedAs(TileCompression compression) {
  switch (compression) {
    case TileCompression::kJpeg:
      return tiff::kJpeg;
    case TileCompression::kDeflate:
      return tiff::kDeflate;
    case TileCompression::kZstd:
      return tiff::kZstd;
    case TileCompression::kNone:
      break;
  }
  return tiff::kNone;
}

/// What GDAL writes behind the header of a cloud-optimised file, so that readers know its order.
std::string orderNote() {
  const std::string text =
      "LAYOUT=IFDS_BEFORE_DATA\nBLOCK_ORDER=ROW_MAJOR\nBLOCK_LEADER=SIZE_AS_UINT4\n"
      "BLOCK_TRAILER=LAST_4_BYTES_REPEATED\nKNOWN_INCOMPATIBLE_EDITION=NO\n ";
  char head[64];
  std::snprintf(head, sizeof head, "GDAL_STRUCTURAL_METADATA_SIZE=%06zu bytes\n", text.size());
  return head + text;
}

void appendFramed(std::vector<uint8_t>& out, const uint8_t* bytes, uint64_t count) {
  putNumber(out, count, kFrame);
  out.insert(out.end(), bytes, bytes + count);
  uint8_t last[kFrame] = {};
  const uint64_t repeated = std::min(count, kFrame);
  std::memcpy(last + kFrame - repeated, bytes + count - repeated, repeated);
  out.insert(out.end(), last, last + kFrame);
}

}  // namespace

Status TiledTiffWriter::create(const std::string& path, TiledTiffForm form) {
  path_ = path;
  form_ = std::move(form);
  for (const LevelSize& size : form_.levels) {
    Level level;
    level.columns = (size.width + kPyramidTile - 1) / kPyramidTile;
    level.rows = (size.height + kPyramidTile - 1) / kPyramidTile;
    level.offsets.resize(static_cast<size_t>(level.columns) * level.rows);
    level.byteCounts.resize(level.offsets.size());
    tileCount_ += level.offsets.size();
    levels_.push_back(std::move(level));
  }
  end_ = kAlignment;
  if (isSpooled()) {
    if (Status created = spool_.create(spoolPath()); !created) return created;
  } else if (form_.cloudOptimised) {
    for (Level& level : levels_)
      std::fill(level.byteCounts.begin(), level.byteCounts.end(), kTilePixels * form_.channels);
    placeTiles();
  }
  return file_.create(path);
}

Status TiledTiffWriter::writeTile(size_t level, int column, int row, const uint8_t* pixels) {
  Level& target = levels_[level];
  const size_t index = static_cast<size_t>(row) * target.columns + column;
  std::vector<uint8_t> stream;
  const uint8_t* bytes = pixels;
  uint64_t count = kTilePixels * form_.channels;
  if (form_.coding.compression != TileCompression::kNone) {
    if (!encodeTile(form_.coding, pixels, kPyramidTile, kPyramidTile, form_.channels, stream))
      return Status::error(path_ + ": a tile cannot be compressed");
    bytes = stream.data();
    count = stream.size();
  }
  if (index % std::max<size_t>(1, tileCount_ / kSamples) == 0) {
    const Sample sample{level, index, hashBytes(bytes, count)};
    const std::lock_guard<std::mutex> lock(mutex_);
    samples_.push_back(sample);
  }
  if (form_.cloudOptimised && !isSpooled()) return writeFramed(target.offsets[index], bytes, count);
  const uint64_t offset = end_.fetch_add((count + kAlignment - 1) / kAlignment * kAlignment);
  target.offsets[index] = offset;
  target.byteCounts[index] = count;
  return (isSpooled() ? spool_ : file_).writeAt(offset, bytes, count);
}

Status TiledTiffWriter::writeFramed(uint64_t offset, const uint8_t* bytes, uint64_t count) {
  std::vector<uint8_t> framed;
  framed.reserve(count + 2 * kFrame);
  appendFramed(framed, bytes, count);
  return file_.writeAt(offset - kFrame, framed.data(), framed.size());
}

std::vector<TiffTag> TiledTiffWriter::tagsOf(size_t level) const {
  const LevelSize size = form_.levels[level];
  const TileCompression compression = form_.coding.compression;
  const bool colour = form_.channels == 3, jpeg = compression == TileCompression::kJpeg;
  const uint64_t photometric = !colour ? tiff::kMinIsBlack : jpeg ? tiff::kYCbCr : tiff::kRgb;
  const bool isImage = level == 0 && form_.holdsImage;
  std::vector<TiffTag> tags = {
      numbersTag(254, TagType::kLong, {isImage ? 0 : tiff::kReducedImage}),
      numbersTag(256, TagType::kLong, {static_cast<uint64_t>(size.width)}),
      numbersTag(257, TagType::kLong, {static_cast<uint64_t>(size.height)}),
      numbersTag(258, TagType::kShort, std::vector<uint64_t>(form_.channels, 8)),
      numbersTag(259, TagType::kShort, {storedAs(compression)}),
      numbersTag(262, TagType::kShort, {photometric}),
      numbersTag(277, TagType::kShort, {static_cast<uint64_t>(form_.channels)}),
      numbersTag(284, TagType::kShort, {1}),
      numbersTag(322, TagType::kShort, {kPyramidTile}),
      numbersTag(323, TagType::kShort, {kPyramidTile}),
      numbersTag(324, big_ ? TagType::kLong8 : TagType::kLong, levels_[level].offsets),
      numbersTag(325, TagType::kLong, levels_[level].byteCounts),
  };
  if (compression == TileCompression::kDeflate || compression == TileCompression::kZstd)
    tags.push_back(numbersTag(317, TagType::kShort, {2}));
  if (photometric == tiff::kYCbCr) tags.push_back(numbersTag(530, TagType::kShort, {2, 2}));
  if (level == 0) tags.insert(tags.end(), form_.tags.begin(), form_.tags.end());
  std::sort(tags.begin(), tags.end(),
            [](const TiffTag& a, const TiffTag& b) { return a.tag < b.tag; });
  return tags;
}

std::vector<uint8_t> TiledTiffWriter::directories(uint64_t base) const {
  std::vector<uint8_t> out;
  for (size_t i = 0; i < levels_.size(); ++i)
    putDirectory(out, base, tagsOf(i), big_, i + 1 == levels_.size());
  return out;
}

std::vector<uint8_t> TiledTiffWriter::header(uint64_t firstDirectory) const {
  std::vector<uint8_t> out = {'I', 'I'};
  putNumber(out, big_ ? 43 : 42, 2);
  if (big_) putNumber(out, 8, 4);
  putNumber(out, firstDirectory, big_ ? 8 : 4);
  return out;
}

/// Header, note and directories of a cloud-optimised file.
std::vector<uint8_t> TiledTiffWriter::cloudHead() const {
  const std::string note = orderNote();
  const uint64_t at = ((big_ ? 16 : 8) + note.size() + 1) / 2 * 2;
  std::vector<uint8_t> out = header(at);
  out.insert(out.end(), note.begin(), note.end());
  out.resize(at);
  const std::vector<uint8_t> list = directories(at);
  out.insert(out.end(), list.begin(), list.end());
  return out;
}

/// Gives every tile its place by its size: the smallest picture first, row by row.
void TiledTiffWriter::placeTiles() {
  uint64_t bytes = 0;
  for (const Level& level : levels_) {
    for (const uint64_t count : level.byteCounts) bytes += count + 2 * kFrame;
  }
  big_ = bytes + cloudHead().size() > form_.classicLimit;
  uint64_t at = cloudHead().size();
  for (size_t i = levels_.size(); i-- > 0;) {
    for (size_t tile = 0; tile < levels_[i].offsets.size(); ++tile) {
      levels_[i].offsets[tile] = at + kFrame;
      at += levels_[i].byteCounts[tile] + 2 * kFrame;
    }
  }
  end_ = at;
}

Status TiledTiffWriter::copySpooled(const std::vector<Level>& spooled) {
  RandomFile from;
  if (Status opened = from.open(spoolPath()); !opened) return opened;
  std::vector<uint8_t> buffer, tile;
  uint64_t at = cloudHead().size();
  const auto flush = [&] {
    Status written = file_.writeAt(at, buffer.data(), buffer.size());
    at += buffer.size();
    buffer.clear();
    return written;
  };
  for (size_t i = levels_.size(); i-- > 0;) {
    for (size_t index = 0; index < spooled[i].offsets.size(); ++index) {
      tile.resize(spooled[i].byteCounts[index]);
      if (!from.readAt(spooled[i].offsets[index], tile.data(), tile.size()))
        return Status::error(spoolPath() + ": cannot be read back");
      appendFramed(buffer, tile.data(), tile.size());
      if (buffer.size() < kCopyBytes) continue;
      if (Status written = flush(); !written) return written;
    }
  }
  return flush();
}

Status TiledTiffWriter::finishCloud() {
  if (isSpooled()) {
    const std::vector<Level> spooled = levels_;
    placeTiles();
    if (Status copied = copySpooled(spooled); !copied) return copied;
    if (Status removed = removeAll(spoolPath()); !removed) return removed;
  }
  const std::vector<uint8_t> head = cloudHead();
  if (Status written = file_.writeAt(0, head.data(), head.size()); !written) return written;
  return file_.finish();
}

Status TiledTiffWriter::finishPlain() {
  const uint64_t base = end_;
  big_ = base > form_.classicLimit;
  const std::vector<uint8_t> list = directories(base);
  if (!big_ && base + list.size() > UINT32_MAX)
    return Status::error(path_ + ": is larger than its form allows");
  const std::vector<uint8_t> head = header(base);
  if (Status written = file_.writeAt(base, list.data(), list.size()); !written) return written;
  if (Status written = file_.writeAt(0, head.data(), head.size()); !written) return written;
  return file_.finish();
}

Status TiledTiffWriter::finish() {
  return form_.cloudOptimised ? finishCloud() : finishPlain();
}

Status TiledTiffWriter::check() const {
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
    const Level& level = levels_[sample.level];
    bytes.resize(level.byteCounts[sample.index]);
    if (!file.readAt(level.offsets[sample.index], bytes.data(), bytes.size()) ||
        hashBytes(bytes.data(), bytes.size()) != sample.hash)
      return damaged;
  }
  const GuardedImage guarded(path_);
  return guarded.open() ? Status::ok() : damaged;
}

}  // namespace tarn::raster
