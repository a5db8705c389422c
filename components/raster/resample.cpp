#include "components/raster/resample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "components/raster/kernels.h"

namespace tarn::raster {
namespace {

constexpr int kMostFastTaps = 4;

/// Part of the pixels of a level row that lies in one column of tiles.
struct Segment {
  int column = 0;
  int begin = 0;
  int end = 0;
  /// Groups of four cells that need pixels of it.
  int firstGroup = 0;
  int lastGroup = 0;
};

using Rows = std::array<const uint8_t*, kMostFastTaps>;

/// Resamples rows of one window; holds the buffers of one thread.
class RowSampler {
 public:
  RowSampler(const TileBlock& block, const AxisTaps& across, const AxisTaps& down, uint8_t* out,
             size_t stride)
      : block_(block),
        across_(across),
        down_(down),
        out_(out + 3 * static_cast<size_t>(across.first)),
        stride_(stride),
        channels_(block.grid.channels) {
    for (int column = block.firstColumn; column < block.firstColumn + block.columns; ++column) {
      const int left = column * block.grid.tileWidth;
      const Segment segment{column, std::max(left, across.pixelBegin),
                            std::min(left + block.grid.widthOf(column), across.pixelEnd)};
      if (segment.begin < segment.end) segments_.push_back(segment);
    }
    for (const int start : across.start) start_.push_back(start - across.pixelBegin);
    pixels_ = static_cast<size_t>(across.pixelEnd - across.pixelBegin);
    quantiseAcross();
  }

  void run() {
    if (across_.width == 1 && down_.width == 1) return copyRows();
    for (int i = 0; i < down_.cells(); ++i) {
      uint8_t* row = out_ + (down_.first + i) * stride_;
      const bool keys = rowHasKeys(i);
      // The fast way knows only the rule of the half.
      const bool exactly = keys && block_.leastContent != TileBlock().leastContent;
      if (!exactly && down_.width <= kMostFastTaps && across_.width <= kMostFastTaps) {
        averageFast(i, keys, row);
      } else {
        averageExact(i, keys, row);
      }
    }
  }

 private:
  const uint8_t* pixelsAt(const Segment& segment, int y) const {
    const int row = y / block_.grid.tileHeight;
    const Tile& tile = block_.at(segment.column, row);
    return tile.pixels.get() + (y - row * block_.grid.tileHeight) * tile.stride() +
           static_cast<size_t>(segment.begin - segment.column * block_.grid.tileWidth) * channels_;
  }

  /// Rows with a weight in cell row i.
  int rowsOf(int i) const {
    int count = down_.width;
    while (count > 1 && down_.weightsOf(i)[count - 1] == 0) --count;
    return count;
  }

  bool rowHasKeys(int i) const {
    const int from = down_.start[i] / block_.grid.tileHeight;
    const int to = (down_.start[i] + rowsOf(i) - 1) / block_.grid.tileHeight;
    for (int row = from; row <= to; ++row) {
      for (const Segment& segment : segments_) {
        if (block_.at(segment.column, row).hasKeys) return true;
      }
    }
    return false;
  }

  void quantiseAcross() {
    if (across_.width > kMostFastTaps) return;
    const size_t groups = (static_cast<size_t>(across_.cells()) + 3) / 4;
    start_.resize(groups * 4, start_.back());
    fastWeights_.resize(groups * 16 * across_.width);
    for (int i = 0; i < across_.cells(); ++i) {
      for (int k = 0; k < across_.width; ++k) {
        const float weight = across_.weightsOf(i)[k] * 65536.0F;
        const auto whole = static_cast<uint16_t>(std::clamp(std::lround(weight), 0L, 65535L));
        const size_t at = 16 * (static_cast<size_t>(i / 4) * across_.width + k) + 4 * (i % 4);
        std::fill_n(&fastWeights_[at], 4, whole);
      }
    }
    // One pixel more than there are, for reads of four numbers at the last one.
    blended_.resize((pixels_ + across_.width + 1) * channels_);
    for (Segment& segment : segments_) {
      const auto groupAt = [&](int pixel) {
        const auto at = std::lower_bound(start_.begin(), start_.end(), pixel - across_.pixelBegin);
        return static_cast<int>(at - start_.begin());
      };
      segment.firstGroup = groupAt(segment.begin - across_.width + 1) / 4;
      segment.lastGroup = (groupAt(segment.end) + 3) / 4;
    }
  }

  /// The weights of cell row i as 256ths with the sum 256.
  std::array<uint16_t, kMostFastTaps> quantisedDown(int i, int count) const {
    std::array<uint16_t, kMostFastTaps> weights{};
    int left = 256, heaviest = 0;
    for (int k = 0; k < count; ++k) {
      weights[k] = static_cast<uint16_t>(std::lround(down_.weightsOf(i)[k] * 256));
      left -= weights[k];
      if (weights[k] > weights[heaviest]) heaviest = k;
    }
    weights[heaviest] = static_cast<uint16_t>(weights[heaviest] + left);
    return weights;
  }

  void averageFast(int i, bool keys, uint8_t* row) {
    const int count = rowsOf(i);
    const auto weights = quantisedDown(i, count);
    int group = 0;
    for (const Segment& segment : segments_) {
      Rows rows{};
      for (int k = 0; k < count; ++k) rows[k] = pixelsAt(segment, down_.start[i] + k);
      const size_t bytes = static_cast<size_t>(segment.end - segment.begin) * channels_;
      const size_t at = static_cast<size_t>(segment.begin - across_.pixelBegin) * channels_;
      const bool covered = !keys || !hasKeys(segment.column, down_.start[i], rows, count, bytes);
      if (!covered) {
        covers_.resize(blended_.size(), kFullCover);
        const Rows masks = splitRows(rows, count, bytes);
        blendRows(masks.data(), weights.data(), count, bytes, covers_.data() + at);
        uncovered_.push_back(&segment);
      }
      blendRows(rows.data(), weights.data(), count, bytes, blended_.data() + at);
    }
    for (const Segment* segment : uncovered_) {
      gather(group, segment->firstGroup, true, row);
      group = std::max(group, segment->firstGroup);
      gather(group, segment->lastGroup, false, row);
      group = std::max(group, segment->lastGroup);
    }
    gather(group, static_cast<int>(start_.size() / 4), true, row);
    for (const Segment* segment : uncovered_) {
      std::fill_n(
          covers_.begin() + (segment->begin - across_.pixelBegin) * static_cast<int64_t>(channels_),
          static_cast<size_t>(segment->end - segment->begin) * channels_, kFullCover);
    }
    uncovered_.clear();
  }

  /// The cells of the groups [from, to), which are all content or not.
  void gather(int from, int to, bool covered, uint8_t* row) const {
    const int cells = std::min(4 * to, across_.cells()) - 4 * from;
    if (cells <= 0) return;
    const int* start = start_.data() + 4 * static_cast<size_t>(from);
    const uint16_t* weights = fastWeights_.data() + 16 * static_cast<size_t>(from) * across_.width;
    uint8_t* out = row + 12 * static_cast<size_t>(from);
    if (covered) {
      gatherCells(blended_.data(), start, weights, across_.width, cells, channels_, out);
    } else {
      gatherCoveredCells(blended_.data(), covers_.data(), start, weights, across_.width, cells,
                         channels_, out);
    }
  }

  bool hasKeys(int column, int y, const Rows& rows, int count, size_t bytes) const {
    for (int k = 0; k < count; ++k) {
      if (block_.at(column, (y + k) / block_.grid.tileHeight).hasKeys &&
          findKeys(rows[k], bytes / channels_, channels_))
        return true;
    }
    return false;
  }

  /// Puts rows of content in the place of the rows, and gives their masks.
  Rows splitRows(Rows& rows, int count, size_t bytes) {
    split_.resize(2 * kMostFastTaps * bytes);
    Rows masks{};
    for (int k = 0; k < count; ++k) {
      uint8_t* content = split_.data() + 2 * k * bytes;
      splitKeys(rows[k], bytes / channels_, channels_, content, content + bytes);
      rows[k] = content;
      masks[k] = content + bytes;
    }
    return masks;
  }

  void averageExact(int i, bool keys, uint8_t* row) {
    sums_.assign(pixels_ * channels_, 0.0F);
    if (keys) cover_.assign(pixels_, 0.0F);
    for (int k = 0; k < rowsOf(i); ++k) {
      const float weight = down_.weightsOf(i)[k];
      const int y = down_.start[i] + k;
      for (const Segment& segment : segments_) addSegment(segment, y, weight, keys);
    }
    for (int cell = 0; cell < across_.cells(); ++cell)
      storeCell(cell, keys, row + 3 * static_cast<size_t>(cell));
  }

  void addSegment(const Segment& segment, int y, float weight, bool keys) {
    const size_t at = static_cast<size_t>(segment.begin - across_.pixelBegin);
    const size_t count = static_cast<size_t>(segment.end - segment.begin);
    float* sums = sums_.data() + at * channels_;
    const uint8_t* pixels = pixelsAt(segment, y);
    if (block_.at(segment.column, y / block_.grid.tileHeight).hasKeys) {
      addRowWithoutKeys(pixels, weight, count, channels_, sums, cover_.data() + at);
      return;
    }
    addRow(pixels, weight, count * channels_, sums);
    if (keys) {
      for (size_t p = 0; p < count; ++p) cover_[at + p] += weight;
    }
  }

  void storeCell(int cell, bool keys, uint8_t* out) const {
    float sum[3] = {0, 0, 0};
    float cover = 0;
    const size_t from = static_cast<size_t>(start_[cell]);
    const int taps = static_cast<int>(std::min<size_t>(across_.width, pixels_ - from));
    const float* weights = across_.weightsOf(cell);
    for (int k = 0; k < taps; ++k) {
      for (int c = 0; c < channels_; ++c) sum[c] += weights[k] * sums_[(from + k) * channels_ + c];
      if (keys) cover += weights[k] * cover_[from + k];
    }
    if (!keys) return storeContent(sum, channels_, 1, out);
    if (cover < block_.leastContent) {
      out[0] = out[1] = out[2] = 0;
    } else {
      storeContent(sum, channels_, 1 / cover, out);
    }
  }

  void copyRows() {
    const uint8_t* previous = nullptr;
    for (int i = 0; i < down_.cells(); ++i) {
      uint8_t* row = out_ + (down_.first + i) * stride_;
      if (i > 0 && down_.start[i] == down_.start[i - 1]) {
        std::memcpy(row, previous, 3 * static_cast<size_t>(across_.cells()));
      } else {
        copyRow(down_.start[i], row);
      }
      previous = row;
    }
  }

  void copyRow(int y, uint8_t* row) const {
    int cell = 0;
    for (const Segment& segment : segments_) {
      const uint8_t* pixels = pixelsAt(segment, y);
      // Cells follow the pixels, so those of one segment are neighbours.
      const auto last =
          std::lower_bound(across_.start.begin() + cell, across_.start.end(), segment.end);
      const int end = static_cast<int>(last - across_.start.begin());
      if (end == cell) continue;
      const bool oneToOne = across_.start[end - 1] - across_.start[cell] == end - cell - 1;
      const uint8_t* first =
          pixels + static_cast<size_t>(across_.start[cell] - segment.begin) * channels_;
      if (oneToOne && channels_ == 3) {
        std::memcpy(row + 3 * static_cast<size_t>(cell), first,
                    3 * static_cast<size_t>(end - cell));
        cell = end;
        continue;
      }
      for (; cell < end; ++cell) {
        const uint8_t* p =
            pixels + static_cast<size_t>(across_.start[cell] - segment.begin) * channels_;
        uint8_t* target = row + 3 * static_cast<size_t>(cell);
        target[0] = p[0];
        target[1] = p[channels_ == 1 ? 0 : 1];
        target[2] = p[channels_ == 1 ? 0 : 2];
      }
    }
  }

  const TileBlock& block_;
  const AxisTaps& across_;
  const AxisTaps& down_;
  uint8_t* out_;
  size_t stride_;
  int channels_;
  std::vector<Segment> segments_;
  std::vector<int> start_;
  size_t pixels_ = 0;
  std::vector<uint16_t> fastWeights_;
  std::vector<uint16_t> blended_;
  /// kFullCover between rows.
  std::vector<uint16_t> covers_;
  std::vector<const Segment*> uncovered_;
  std::vector<uint8_t> split_;
  std::vector<float> sums_;
  std::vector<float> cover_;
};

}  // namespace

void resample(const TileBlock& block, const AxisTaps& across, const AxisTaps& down, uint8_t* out,
              size_t stride) {
  if (across.cells() == 0 || down.cells() == 0) return;
  RowSampler(block, across, down, out, stride).run();
}

}  // namespace tarn::raster
