#include "components/raster/resampledreader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "components/raster/mappedpart.h"
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

PixelPatch patchFor(const PlaneMapping& mapping, const TileGrid& grid, const Part& part) {
  const Part source = sourceOf(mapping, grid.width, grid.height, part);
  PixelPatch patch;
  patch.x = source.x;
  patch.y = source.y;
  patch.width = source.width;
  patch.height = source.height;
  return patch;
}

/// What both ways to resample have in common: tiles filled part by part.
class ResampledReader : public TileReader {
 public:
  ResampledReader(const SourceLevel& source, const PresentedGrid& presented)
      : source_(source.pixels) {
    constexpr double kTrace = 1e-9;
    const TileGrid& own = source_->grid();
    grid_.width = static_cast<int>(std::ceil(presented.width / presented.factor - kTrace));
    grid_.height = static_cast<int>(std::ceil(presented.height / presented.factor - kTrace));
    grid_.tileWidth = std::min(kTile, grid_.width);
    grid_.tileHeight = std::min(kTile, grid_.height);
    grid_.channels = own.channels;
    extent_.width = std::min<double>(own.width, presented.imageWidth / source.factorX);
    extent_.height = std::min<double>(own.height, presented.imageHeight / source.factorY);
  }

  const TileGrid& grid() const override { return grid_; }
  bool sequential() const override { return source_->reader().sequential(); }

  bool read(int column, int row, Tile& out, uint64_t& bytesRead) const override {
    out.allocate(grid_.widthOf(column), grid_.heightOf(row), grid_.channels);
    out.hasKeys = false;
    const Part tile = partOf(column, row);
    return fill(tile, tile, out, bytesRead);
  }

 protected:
  Part partOf(int column, int row) const {
    return {column * grid_.tileWidth, row * grid_.tileHeight, grid_.widthOf(column),
            grid_.heightOf(row)};
  }

  /// Fills a part of the tile whose pixels are `out`.
  virtual bool fill(const Part& part, const Part& tile, Tile& out, uint64_t& bytesRead) const = 0;

  static bool isDivisible(const Part& part) {
    return part.width > kSmallestPart && part.height > kSmallestPart;
  }

  template <typename Fill>
  static bool fillQuarters(const Part& part, const Fill& fillOne) {
    const int w = part.width / 2, h = part.height / 2;
    const Part quarters[] = {{part.x, part.y, w, h},
                             {part.x + w, part.y, part.width - w, h},
                             {part.x, part.y + h, w, part.height - h},
                             {part.x + w, part.y + h, part.width - w, part.height - h}};
    return std::all_of(std::begin(quarters), std::end(quarters), fillOne);
  }

  static void clear(const Part& part, const Part& tile, Tile& out) {
    out.hasKeys = true;
    for (int y = 0; y < part.height; ++y)
      std::memset(pixelAt(part.x, part.y + y, tile, out), 0,
                  static_cast<size_t>(part.width) * out.channels);
  }

  bool fillBy(const PlaneMapping& mapping, const Part& part, const Part& tile, Tile& out,
              uint64_t& bytesRead) const {
    PixelPatch patch = patchFor(mapping, source_->grid(), part);
    if (patch.width == 0) {
      clear(part, tile, out);
      return true;
    }
    if (isDivisible(part) && static_cast<int64_t>(patch.width) * patch.height > kMostPatchPixels) {
      return fillQuarters(part, [&](const Part& quarter) {
        return fillBy(mapping, quarter, tile, out, bytesRead);
      });
    }
    if (!source_->copy(patch, bytesRead)) return false;
    sample(mapping, patch, part, tile, out);
    return true;
  }

  /// The parts of the source that fillBy() copies.
  void addSources(const PlaneMapping& mapping, const Part& part, std::vector<Part>& parts) const {
    const Part source = sourceOf(mapping, source_->grid().width, source_->grid().height, part);
    if (source.isEmpty()) return;
    if (!isDivisible(part) || source.pixels() <= kMostPatchPixels) {
      parts.push_back(source);
      return;
    }
    fillQuarters(part, [&](const Part& quarter) {
      addSources(mapping, quarter, parts);
      return true;
    });
  }

  void sample(const PlaneMapping& mapping, const PixelPatch& patch, const Part& part,
              const Part& tile, Tile& out) const {
    const int n = pointsAcross(mapping, part), count = n * part.width;
    std::vector<int32_t> offset(count), share(count), inside(count);
    std::vector<uint8_t> points(n > 1 ? static_cast<size_t>(n) * count * out.channels : 0);
    const bool whole = liesInside(mapping, patch, part);
    out.hasKeys = out.hasKeys || patch.hasKeys || !whole;
    const RowSources sources{offset.data(), share.data(), whole ? nullptr : inside.data()};
    for (int row = 0; row < part.height; ++row) {
      uint8_t* target = pixelAt(part.x, part.y + row, tile, out);
      for (int k = 0; k < n; ++k) {
        const auto line = mapping.row(part.y + row + (k + 0.5) / n);
        if (whole) {
          locateInside(line, part.x + 0.5 / n, 1.0 / n, count, patch, sources);
        } else {
          locateRow(line, part.x + 0.5 / n, 1.0 / n, count, extent_, patch, sources);
        }
        uint8_t* to =
            n == 1 ? target : points.data() + static_cast<size_t>(k) * count * out.channels;
        sampleRow(patch, sources, count, to);
      }
      if (n > 1) averageRows(points.data(), n, part.width, out.channels, target);
    }
  }

  /// True when all of the part shows the image: its patch has a rim on every side of it.
  bool liesInside(const PlaneMapping& mapping, const PixelPatch& patch, const Part& part) const {
    const PlanePoint low{static_cast<double>(part.x), static_cast<double>(part.y)};
    return patch.x > 0 && patch.y > 0 && patch.x + patch.width < extent_.width &&
           patch.y + patch.height < extent_.height && patch.width <= kLongestInside &&
           patch.height <= kLongestInside &&
           mapping.keepsSide(low, {low.x + part.width, low.y + part.height}, extent_.orientation);
  }

  static uint8_t* pixelAt(int x, int y, const Part& tile, Tile& out) {
    return out.pixels.get() + (y - tile.y) * out.stride() +
           static_cast<size_t>(x - tile.x) * out.channels;
  }

  std::shared_ptr<const CachedLevel> source_;
  LevelExtent extent_;
  TileGrid grid_;
};

class PlaneReader final : public ResampledReader {
 public:
  PlaneReader(const SourceLevel& source, const PlaneMapping& mapping,
              const PresentedGrid& presented)
      : ResampledReader(source, presented),
        mapping_(mapping.onGrid({0, 0}, {presented.factor, presented.factor})
                     .scaled(1 / source.factorX, 1 / source.factorY)) {
    const auto middle = mapping_.invert({extent_.width / 2, extent_.height / 2});
    if (middle && mapping_.slopeAt(middle->x, middle->y).determinant() < 0)
      extent_.orientation = -1;
  }

  void addRanges(const std::vector<TilePlace>& places,
                 std::vector<ByteRange>& ranges) const override {
    std::vector<Part> parts;
    for (const TilePlace& place : places)
      addSources(mapping_, partOf(place.column, place.row), parts);
    source_->addRanges(parts, ranges);
  }

 private:
  bool fill(const Part& part, const Part& tile, Tile& out, uint64_t& bytesRead) const override {
    return fillBy(mapping_, part, tile, out, bytesRead);
  }

  /// Presented pixels of this level to pixels of the source.
  PlaneMapping mapping_;
};

class CurvedReader final : public ResampledReader {
 public:
  CurvedReader(const SourceLevel& source, std::shared_ptr<const CurvedMapping> mapping,
               const PresentedGrid& presented)
      : ResampledReader(source, presented),
        mapping_(std::move(mapping)),
        step_(presented.factor),
        factor_{source.factorX, source.factorY} {
    extent_.orientation = mapping_->orientation();
  }

 private:
  bool fill(const Part& part, const Part& tile, Tile& out, uint64_t& bytesRead) const override {
    const PlanePoint low{static_cast<double>(part.x), static_cast<double>(part.y)};
    const PlanePoint high{low.x + part.width, low.y + part.height};
    if (!mapping_->mayShow({low.x * step_, low.y * step_}, {high.x * step_, high.y * step_})) {
      clear(part, tile, out);
      return true;
    }
    if (const auto piece = pieceOf(*mapping_, low, high, step_, factor_))
      return fillBy(*piece, part, tile, out, bytesRead);
    if (!isDivisible(part)) return fillByPoints(part, tile, out, bytesRead);
    return fillQuarters(part,
                        [&](const Part& quarter) { return fill(quarter, tile, out, bytesRead); });
  }

  /// Pixel by pixel, where the mapping ends or turns sharply.
  bool fillByPoints(const Part& part, const Part& tile, Tile& out, uint64_t& bytesRead) const {
    constexpr PlanePoint kOutside{-1, -1};
    std::vector<PlanePoint> points(static_cast<size_t>(part.width) * part.height, kOutside);
    PlanePoint low{HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL};
    for (int y = 0; y < part.height; ++y) {
      for (int x = 0; x < part.width; ++x) {
        const auto p = mapping_->at((part.x + x + 0.5) * step_, (part.y + y + 0.5) * step_);
        if (!p) continue;
        const PlanePoint q{p->x / factor_.x, p->y / factor_.y};
        if (!(q.x >= 0 && q.y >= 0 && q.x < extent_.width && q.y < extent_.height)) continue;
        points[static_cast<size_t>(y) * part.width + x] = q;
        low = {std::min(low.x, q.x), std::min(low.y, q.y)};
        high = {std::max(high.x, q.x), std::max(high.y, q.y)};
      }
    }
    if (low.x > high.x) {
      clear(part, tile, out);
      return true;
    }
    const TileGrid& own = source_->grid();
    PixelPatch patch;
    patch.x = std::max(0, static_cast<int>(low.x) - 1);
    patch.y = std::max(0, static_cast<int>(low.y) - 1);
    patch.width = std::min(own.width, static_cast<int>(high.x) + 2) - patch.x;
    patch.height = std::min(own.height, static_cast<int>(high.y) + 2) - patch.y;
    if (static_cast<int64_t>(patch.width) * patch.height > kMostPatchPixels && part.width > 1 &&
        part.height > 1) {
      return fillQuarters(
          part, [&](const Part& quarter) { return fillByPoints(quarter, tile, out, bytesRead); });
    }
    if (!source_->copy(patch, bytesRead)) return false;
    out.hasKeys = true;
    std::vector<int32_t> offset(part.width), share(part.width), inside(part.width);
    const RowSources sources{offset.data(), share.data(), inside.data()};
    for (int y = 0; y < part.height; ++y) {
      locatePoints(&points[static_cast<size_t>(y) * part.width], part.width, extent_, patch,
                   sources);
      sampleRow(patch, sources, part.width, pixelAt(part.x, part.y + y, tile, out));
    }
    return true;
  }

  std::shared_ptr<const CurvedMapping> mapping_;
  /// Presented pixels of full size to one of this level; image pixels to one of the source.
  double step_;
  PlanePoint factor_;
};

}  // namespace

std::unique_ptr<TileReader> makeResampledReader(const SourceLevel& source,
                                                const PlaneMapping& mapping,
                                                const PresentedGrid& grid) {
  return std::make_unique<PlaneReader>(source, mapping, grid);
}

std::unique_ptr<TileReader> makeCurvedReader(const SourceLevel& source,
                                             std::shared_ptr<const CurvedMapping> mapping,
                                             const PresentedGrid& grid) {
  return std::make_unique<CurvedReader>(source, std::move(mapping), grid);
}

}  // namespace tarn::raster
