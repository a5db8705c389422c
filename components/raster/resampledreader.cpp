#include "components/raster/resampledreader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "components/raster/warpkernels.h"

namespace tarn::raster {
namespace {

// What a view needs of the tiles at its rim costs more here than their number does.
constexpr int kTile = 128;
// Pixels of a level that are taken together for a part of a tile.
constexpr int64_t kMostPatchPixels = 2 << 20;
constexpr int kSmallestPart = 16;
// Steps of up to this many pixels lose nothing that is worth the time of averaging.
constexpr double kLongestStep = 1.25;
constexpr int kMostPoints = 8;

/// A rectangle of a level's presented pixels.
struct Part {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// How many points in each direction a pixel of the part is the average of. Even steps of an affine
/// mapping are as long as a pixel.
int pointsAcross(const PlaneMapping& mapping, const Part& part) {
  if (mapping.isAffine()) return 1;
  double longest = 0;
  for (const double x : {0.0, 0.5, 1.0}) {
    for (const double y : {0.0, 0.5, 1.0}) {
      const Slope slope = mapping.slopeAt(part.x + x * part.width, part.y + y * part.height);
      longest = std::max(longest, slope.longest());
    }
  }
  if (longest <= kLongestStep) return 1;
  return static_cast<int>(std::min(std::ceil(longest), double{kMostPoints}));
}

/// The pixels of the source that a part may need; empty (width 0) when it lies outside.
PixelPatch patchFor(const PlaneMapping& mapping, const TileGrid& grid, const Part& part) {
  const int steps = mapping.isAffine() ? 1 : 8;
  PlanePoint low{HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL};
  for (int j = 0; j <= steps; ++j) {
    for (int i = 0; i <= steps; ++i) {
      const PlanePoint p = mapping.at(part.x + static_cast<double>(part.width) * i / steps,
                                      part.y + static_cast<double>(part.height) * j / steps);
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
  }
  const double slack =
      1 + mapping.bend(static_cast<double>(std::max(part.width, part.height)) / steps);
  const auto pixel = [](double position, int count) {
    return static_cast<int>(std::clamp(std::floor(position), 0.0, static_cast<double>(count)));
  };
  PixelPatch patch;
  patch.x = pixel(low.x - slack, grid.width);
  patch.y = pixel(low.y - slack, grid.height);
  const int right = pixel(high.x + slack + 1, grid.width);
  const int bottom = pixel(high.y + slack + 1, grid.height);
  if (right > patch.x && bottom > patch.y) {
    patch.width = right - patch.x;
    patch.height = bottom - patch.y;
  }
  return patch;
}

class ResampledReader : public TileReader {
 public:
  ResampledReader(const SourceLevel& source, const PlaneMapping& mapping,
                  const PresentedGrid& presented)
      : source_(source.pixels),
        mapping_(mapping.onGrid({0, 0}, {presented.factor, presented.factor})
                     .scaled(1 / source.factorX, 1 / source.factorY)) {
    constexpr double kTrace = 1e-9;
    const TileGrid& own = source_->grid();
    grid_.width = static_cast<int>(std::ceil(presented.width / presented.factor - kTrace));
    grid_.height = static_cast<int>(std::ceil(presented.height / presented.factor - kTrace));
    grid_.tileWidth = std::min(kTile, grid_.width);
    grid_.tileHeight = std::min(kTile, grid_.height);
    grid_.channels = own.channels;
    extent_.width = std::min<double>(own.width, presented.imageWidth / source.factorX);
    extent_.height = std::min<double>(own.height, presented.imageHeight / source.factorY);
    const auto middle = mapping_.invert({extent_.width / 2, extent_.height / 2});
    if (middle && mapping_.slopeAt(middle->x, middle->y).determinant() < 0)
      extent_.orientation = -1;
  }

  const TileGrid& grid() const override { return grid_; }
  bool sequential() const override { return source_->reader().sequential(); }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    const Part tile{column * grid_.tileWidth, row * grid_.tileHeight, out.width, out.height};
    return fill(tile, tile, out, bytesRead);
  }

 private:
  /// Fills a part of the tile whose pixels are `out`.
  bool fill(const Part& part, const Part& tile, Tile& out, uint64_t& bytesRead) const {
    PixelPatch patch = patchFor(mapping_, source_->grid(), part);
    if (patch.width == 0) {
      for (int y = 0; y < part.height; ++y)
        std::memset(pixelAt(part.x, part.y + y, tile, out), 0,
                    static_cast<size_t>(part.width) * out.channels);
      return true;
    }
    const bool divisible = part.width > kSmallestPart && part.height > kSmallestPart;
    if (divisible && static_cast<int64_t>(patch.width) * patch.height > kMostPatchPixels) {
      const int w = part.width / 2, h = part.height / 2;
      const Part quarters[] = {{part.x, part.y, w, h},
                               {part.x + w, part.y, part.width - w, h},
                               {part.x, part.y + h, w, part.height - h},
                               {part.x + w, part.y + h, part.width - w, part.height - h}};
      return std::all_of(std::begin(quarters), std::end(quarters),
                         [&](const Part& quarter) { return fill(quarter, tile, out, bytesRead); });
    }
    if (!source_->copy(patch, bytesRead)) return false;
    sample(patch, part, tile, out);
    return true;
  }

  void sample(const PixelPatch& patch, const Part& part, const Part& tile, Tile& out) const {
    const int n = pointsAcross(mapping_, part), count = n * part.width;
    std::vector<int32_t> offset(count), share(count), inside(count);
    std::vector<uint8_t> points(n > 1 ? static_cast<size_t>(n) * count * out.channels : 0);
    const RowSources sources{offset.data(), share.data(), inside.data()};
    for (int row = 0; row < part.height; ++row) {
      uint8_t* target = pixelAt(part.x, part.y + row, tile, out);
      for (int k = 0; k < n; ++k) {
        const auto line = mapping_.row(part.y + row + (k + 0.5) / n);
        locateRow(line, part.x + 0.5 / n, 1.0 / n, count, extent_, patch, sources);
        uint8_t* to =
            n == 1 ? target : points.data() + static_cast<size_t>(k) * count * out.channels;
        sampleRow(patch, sources, count, to);
      }
      if (n > 1) averageRows(points.data(), n, part.width, out.channels, target);
    }
  }

  static uint8_t* pixelAt(int x, int y, const Part& tile, Tile& out) {
    return out.pixels.get() + (y - tile.y) * out.stride() +
           static_cast<size_t>(x - tile.x) * out.channels;
  }

  std::shared_ptr<const CachedLevel> source_;
  /// Presented pixels of this level to pixels of the source.
  PlaneMapping mapping_;
  LevelExtent extent_;
  TileGrid grid_;
};

}  // namespace

std::unique_ptr<TileReader> makeResampledReader(const SourceLevel& source,
                                                const PlaneMapping& mapping,
                                                const PresentedGrid& grid) {
  return std::make_unique<ResampledReader>(source, mapping, grid);
}

}  // namespace tarn::raster
