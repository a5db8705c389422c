#include "components/convert/imgblocks.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "components/raster/pyramidfile.h"

namespace tarn::convert {
namespace {

// The file is a tree of entries; numbers have their low byte first. An entry: next, previous,
// parent, child, data, size of the data (four bytes each), name (64 bytes), type (32 bytes).
constexpr uint64_t kHeaderPointer = 16, kRootInHeader = 8;
constexpr uint64_t kChild = 12, kData = 16, kType = 88, kEntryBytes = 124;
// The state of a band's blocks: their number at 14, then where their list is. An item of it: file
// code (2), offset (4), size (4), valid (2), compression (2).
constexpr uint64_t kBlockCount = 14, kBlockList = 18;
constexpr size_t kItemBytes = 14, kItemOffset = 2, kItemSize = 6, kItemValid = 10;
constexpr int kBlock = 64;
constexpr uint64_t kBlockBytes = static_cast<uint64_t>(kBlock) * kBlock;
constexpr int kTileBlocks = raster::kPyramidTile / kBlock;
constexpr int kMostEntries = 10000;

uint32_t numberAt(const uint8_t* bytes) {
  uint32_t value = 0;
  for (int i = 4; i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

uint32_t numberAt(const RandomFile& file, uint64_t at) {
  std::array<uint8_t, 4> bytes{};
  return file.readAt(at, bytes.data(), bytes.size()) ? numberAt(bytes.data()) : 0;
}

/// The entries of this type among an entry's children, in order.
std::vector<uint64_t> childrenOfType(const RandomFile& file, uint64_t entry, const char* type) {
  std::vector<uint64_t> found;
  uint64_t at = numberAt(file, entry + kChild);
  for (int i = 0; at != 0 && i < kMostEntries; ++i) {
    std::array<char, kEntryBytes> bytes{};
    if (!file.readAt(at, bytes.data(), bytes.size())) break;
    if (std::strncmp(bytes.data() + kType, type, 32) == 0) found.push_back(at);
    at = numberAt(file, at);
  }
  return found;
}

/// One channel of a block; the compiler unrolls it for the usual numbers of channels.
template <int kChannels>
void takeChannel(const uint8_t* pixels, size_t stride, uint8_t* out) {
  for (int y = 0; y < kBlock; ++y) {
    const uint8_t* row = pixels + y * stride;
    for (int x = 0; x < kBlock; ++x) out[y * kBlock + x] = row[x * kChannels];
  }
}

}  // namespace

bool ImgBlockWriter::readLayer(const RandomFile& file, uint64_t layer) {
  const std::vector<uint64_t> states = childrenOfType(file, layer, "Edms_State");
  if (states.size() != 1) return false;
  const uint64_t data = numberAt(file, states[0] + kData);
  const size_t blocks = static_cast<size_t>(columns_) * static_cast<size_t>(rows_);
  if (numberAt(file, data + kBlockCount) != blocks) return false;
  Layer made;
  made.list = numberAt(file, data + kBlockList);
  made.entries.resize(blocks * kItemBytes);
  if (!file.readAt(made.list, made.entries.data(), made.entries.size())) return false;
  made.firstBlock = numberAt(made.entries.data() + kItemOffset);
  for (size_t i = 0; i < blocks; ++i) {
    uint8_t* item = made.entries.data() + i * kItemBytes;
    if (numberAt(item + kItemOffset) != made.firstBlock + i * kBlockBytes ||
        numberAt(item + kItemSize) != kBlockBytes)
      return false;
    item[kItemValid] = 1;
  }
  layers_.push_back(std::move(made));
  return true;
}

Status ImgBlockWriter::open(const std::string& path, int width, int height, int channels) {
  path_ = path;
  columns_ = (width - 1) / kBlock + 1;
  rows_ = (height - 1) / kBlock + 1;
  channels_ = channels;
  RandomFile file;
  if (Status opened = file.open(path); !opened) return opened;
  const uint64_t header = numberAt(file, kHeaderPointer);
  const uint64_t root = numberAt(file, header + kRootInHeader);
  for (const uint64_t layer : childrenOfType(file, root, "Eimg_Layer")) {
    if (!readLayer(file, layer)) break;
  }
  if (layers_.size() != static_cast<size_t>(channels))
    return Status::error(path + ": its blocks cannot be found");
  return file_.openExisting(path);
}

Status ImgBlockWriter::writeTile(size_t, int column, int row, const uint8_t* pixels) {
  const int firstColumn = column * kTileBlocks, firstRow = row * kTileBlocks;
  const int across = std::min(kTileBlocks, columns_ - firstColumn);
  const int down = std::min(kTileBlocks, rows_ - firstRow);
  const size_t stride = static_cast<size_t>(raster::kPyramidTile) * channels_;
  std::vector<uint8_t> blocks(static_cast<size_t>(across) * kBlockBytes);
  for (int y = 0; y < down; ++y) {
    for (int band = 0; band < channels_; ++band) {
      for (int x = 0; x < across; ++x) {
        const uint8_t* from = pixels + static_cast<size_t>(y) * kBlock * stride +
                              static_cast<size_t>(x) * kBlock * channels_ + band;
        uint8_t* to = blocks.data() + static_cast<size_t>(x) * kBlockBytes;
        channels_ == 3 ? takeChannel<3>(from, stride, to) : takeChannel<1>(from, stride, to);
      }
      const uint64_t index = static_cast<uint64_t>(firstRow + y) * columns_ + firstColumn;
      if (Status written = file_.writeAt(layers_[band].firstBlock + index * kBlockBytes,
                                         blocks.data(), blocks.size());
          !written)
        return written;
    }
  }
  return Status::ok();
}

Status ImgBlockWriter::finish() {
  for (const Layer& layer : layers_) {
    if (Status written = file_.writeAt(layer.list, layer.entries.data(), layer.entries.size());
        !written)
      return written;
  }
  return file_.finish();
}

}  // namespace tarn::convert
