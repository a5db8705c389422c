#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "components/raster/jpegtile.h"
#include "components/raster/tilereaders.h"

namespace tarn::raster {
namespace {

// Strips are presented as tiles of this shape: wide, because every row of a tile is one read.
constexpr int kStripTileWidth = 1024;
constexpr int kStripTileHeight = 64;
constexpr uint32_t kWidestBlock = 8192;
// Smaller tiles are many for their pixels; GDAL's reader gathers them.
constexpr uint32_t kNarrowestBlock = 64;

TileGrid gridOf(const TiffDirectory& directory, int tileWidth, int tileHeight) {
  return {static_cast<int>(directory.width), static_cast<int>(directory.height), tileWidth,
          tileHeight, directory.samples};
}

TileGrid blockGrid(const TiffDirectory& directory) {
  return gridOf(directory, static_cast<int>(directory.blockWidth),
                static_cast<int>(directory.blockHeight));
}

/// Uncompressed tiles: one read a tile.
class RawTileReader : public TileReader {
 public:
  RawTileReader(std::shared_ptr<const RandomBytes> file, TiffDirectory directory)
      : file_(std::move(file)), directory_(std::move(directory)), grid_(blockGrid(directory_)) {}

  const TileGrid& grid() const override { return grid_; }
  bool cheap() const override { return true; }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    const size_t index = static_cast<size_t>(row) * grid_.columns() + column;
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    const uint64_t offset = directory_.offsets[index];
    if (offset == 0 && directory_.byteCounts[index] == 0) {
      std::memset(out.pixels.get(), 0, out.bytes());
      return true;
    }
    const size_t blockStride = static_cast<size_t>(grid_.tileWidth) * grid_.channels;
    const size_t bytes = blockStride * out.height;
    if (directory_.byteCounts[index] < bytes) return false;
    bytesRead += bytes;
    if (out.stride() == blockStride) return file_->readAt(offset, out.pixels.get(), bytes);
    std::vector<uint8_t> block(bytes);
    if (!file_->readAt(offset, block.data(), bytes)) return false;
    for (int y = 0; y < out.height; ++y) {
      std::memcpy(out.pixels.get() + y * out.stride(), block.data() + y * blockStride,
                  out.stride());
    }
    return true;
  }

 private:
  std::shared_ptr<const RandomBytes> file_;
  TiffDirectory directory_;
  TileGrid grid_;
};

/// Uncompressed strips: one read a row of a tile, rows that follow one another in the file in one.
class RawStripReader : public TileReader {
 public:
  RawStripReader(std::shared_ptr<const RandomBytes> file, TiffDirectory directory)
      : file_(std::move(file)),
        directory_(std::move(directory)),
        grid_(gridOf(directory_, kStripTileWidth, kStripTileHeight)) {}

  const TileGrid& grid() const override { return grid_; }
  bool cheap() const override { return true; }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    const uint64_t left = static_cast<uint64_t>(column) * grid_.tileWidth * grid_.channels;
    const int top = row * grid_.tileHeight;
    uint64_t runOffset = 0;
    int runStart = 0;
    for (int y = 0; y <= out.height; ++y) {
      uint64_t offset = 0;
      if (y < out.height && !offsetOf(top + y, left, offset)) return false;
      const bool follows = y > 0 && y < out.height && offset != 0 &&
                           offset == runOffset + (y - runStart) * out.stride();
      if (follows) continue;
      if (y > runStart && !readRun(runOffset, runStart, y, out, bytesRead)) return false;
      runOffset = offset;
      runStart = y;
    }
    return true;
  }

 private:
  /// Where a row's pixels lie; 0 for a strip that is not there and so is black.
  bool offsetOf(int y, uint64_t left, uint64_t& offset) const {
    const uint32_t strip = static_cast<uint32_t>(y) / directory_.blockHeight;
    const uint64_t stride = static_cast<uint64_t>(directory_.width) * grid_.channels;
    const uint64_t inside = (static_cast<uint32_t>(y) % directory_.blockHeight) * stride;
    const uint64_t start = directory_.offsets[strip], bytes = directory_.byteCounts[strip];
    offset = 0;
    if (start == 0 && bytes == 0) return true;
    offset = start + inside + left;
    return inside + stride <= bytes;
  }

  bool readRun(uint64_t offset, int from, int to, Tile& out, uint64_t& bytesRead) const {
    uint8_t* target = out.pixels.get() + from * out.stride();
    const size_t bytes = (to - from) * out.stride();
    if (offset == 0) {
      std::memset(target, 0, bytes);
      return true;
    }
    bytesRead += bytes;
    return file_->readAt(offset, target, bytes);
  }

  std::shared_ptr<const RandomBytes> file_;
  TiffDirectory directory_;
  TileGrid grid_;
};

class JpegTiffReader : public TileReader {
 public:
  JpegTiffReader(std::shared_ptr<const RandomBytes> file, TiffDirectory directory)
      : file_(std::move(file)), directory_(std::move(directory)), grid_(blockGrid(directory_)) {}

  const TileGrid& grid() const override { return grid_; }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    const size_t index = static_cast<size_t>(row) * grid_.columns() + column;
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    const uint64_t bytes = directory_.byteCounts[index];
    if (bytes == 0) {
      std::memset(out.pixels.get(), 0, out.bytes());
      return true;
    }
    if (bytes > kMostBlockBytes) return false;
    std::vector<uint8_t> stream(bytes);
    if (!file_->readAt(directory_.offsets[index], stream.data(), bytes)) return false;
    bytesRead += bytes;
    const JpegColours colours = directory_.samples == 1                  ? JpegColours::kGray
                                : directory_.photometric == tiff::kYCbCr ? JpegColours::kYCbCr
                                                                         : JpegColours::kRgb;
    return decodeJpegTile(stream, directory_.jpegTables, colours, out.width, out.height,
                          out.pixels.get());
  }

 private:
  std::shared_ptr<const RandomBytes> file_;
  TiffDirectory directory_;
  TileGrid grid_;
};

bool areTooSmall(const TiffDirectory& directory) {
  return directory.tiled && std::min(directory.blockWidth, directory.blockHeight) < kNarrowestBlock;
}

uint64_t blockBytes(const TiffDirectory& directory) {
  return static_cast<uint64_t>(directory.blockWidth) * directory.blockHeight * directory.samples;
}

}  // namespace

std::unique_ptr<TileReader> makeRawTiffReader(std::shared_ptr<const RandomBytes> file,
                                              TiffDirectory directory) {
  if (!directory.isPlainPicture() || directory.compression != tiff::kNone) return nullptr;
  if (!directory.tiled)
    return std::make_unique<RawStripReader>(std::move(file), std::move(directory));
  if (std::max(directory.blockWidth, directory.blockHeight) > kWidestBlock) return nullptr;
  if (areTooSmall(directory)) return nullptr;
  return std::make_unique<RawTileReader>(std::move(file), std::move(directory));
}

std::unique_ptr<TileReader> makeJpegTiffReader(std::shared_ptr<const RandomBytes> file,
                                               TiffDirectory directory) {
  if (!directory.isPlainPicture() || directory.compression != tiff::kJpeg) return nullptr;
  if (blockBytes(directory) > kMostBlockBytes || areTooSmall(directory)) return nullptr;
  return std::make_unique<JpegTiffReader>(std::move(file), std::move(directory));
}

}  // namespace tarn::raster
