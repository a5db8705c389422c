#include "components/raster/remotetilereader.h"

#include <algorithm>
#include <utility>

namespace tarn::raster {
namespace {

class RemoteTileReader final : public TileReader {
 public:
  RemoteTileReader(std::unique_ptr<TileReader> inner, std::vector<const TiffDirectory*> pictures)
      : inner_(std::move(inner)), pictures_(std::move(pictures)) {}

  const TileGrid& grid() const override { return inner_->grid(); }

  void addRanges(const std::vector<TilePlace>& places,
                 std::vector<ByteRange>& ranges) const override {
    const TileGrid& g = grid();
    for (const TiffDirectory* picture : pictures_) {
      for (const TilePlace& place : places) {
        const auto blocks = rangesOf(*picture, place.column * g.tileWidth, place.row * g.tileHeight,
                                     g.widthOf(place.column), g.heightOf(place.row));
        ranges.insert(ranges.end(), blocks.begin(), blocks.end());
      }
    }
  }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    return inner_->read(column, row, out, bytesRead);
  }

 private:
  std::unique_ptr<TileReader> inner_;
  std::vector<const TiffDirectory*> pictures_;
};

}  // namespace

std::string hindranceToPieces(const std::vector<TiffDirectory>& directories) {
  // A picture of this size can be read whole.
  constexpr uint32_t kNeedsOverviews = 2048;
  const TiffDirectory& image = directories.front();
  if (!image.tiled) return "has no tiles";
  if (image.offsets.empty() || image.byteCounts.size() < image.offsets.size())
    return "has a damaged list of tiles";
  // Several of them are decoded at a time.
  constexpr uint64_t kMostTilePixels = 4 << 20;
  for (const TiffDirectory& picture : directories) {
    if (uint64_t{picture.blockWidth} * picture.blockHeight > kMostTilePixels)
      return "has tiles of more than 2048 pixels a side";
  }
  const bool large = std::max(image.width, image.height) > kNeedsOverviews;
  const bool reduced = std::any_of(directories.begin() + 1, directories.end(), [](const auto& d) {
    return (d.subfileType & tiff::kReducedImage) != 0 && (d.subfileType & tiff::kMask) == 0;
  });
  return large && !reduced ? "has no reduced levels" : std::string();
}

std::vector<ByteRange> rangesOf(const TiffDirectory& picture, int x, int y, int width, int height) {
  std::vector<ByteRange> ranges;
  const uint64_t across = picture.blocksAcross(), plane = across * picture.blocksDown();
  const auto blockWidth = static_cast<uint64_t>(picture.blockWidth),
             blockHeight = static_cast<uint64_t>(picture.blockHeight);
  const uint64_t planes = picture.planar ? std::max<uint64_t>(1, picture.samples) : 1;
  if (picture.offsets.size() < plane * planes || picture.byteCounts.size() < plane * planes)
    return ranges;
  const uint64_t lastColumn = std::min((x + uint64_t(width) - 1) / blockWidth, across - 1);
  const uint64_t lastRow = std::min((y + uint64_t(height) - 1) / blockHeight, plane / across - 1);
  for (uint64_t p = 0; p < planes; ++p) {
    for (uint64_t row = y / blockHeight; row <= lastRow; ++row) {
      for (uint64_t column = x / blockWidth; column <= lastColumn; ++column) {
        const uint64_t block = p * plane + row * across + column;
        const uint64_t bytes = picture.byteCounts[block];
        if (bytes > 0 && bytes <= kMostBlockBytes)
          ranges.push_back({picture.offsets[block], bytes});
      }
    }
  }
  return ranges;
}

std::unique_ptr<TileReader> makeRemoteReader(std::unique_ptr<TileReader> inner,
                                             std::vector<const TiffDirectory*> pictures) {
  return std::make_unique<RemoteTileReader>(std::move(inner), std::move(pictures));
}

}  // namespace tarn::raster
