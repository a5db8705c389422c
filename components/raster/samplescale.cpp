// What only a look at the pixels tells: the scale of samples that are not bytes, and whether
// colours are multiplied by alpha.
#include <gdal_priv.h>

#include <algorithm>

#include "components/raster/gdalsamples.h"

namespace tarn::raster {
namespace {

// Enough samples for quantiles, few enough for an image to open at once.
constexpr int64_t kMostPixels = 1 << 20;
constexpr int kMostBlocks = 64;
constexpr int64_t kBlockPixels = 1 << 18;
// A coarser overview says too little.
constexpr int64_t kLeastPixels = 4096;

/// The coarsest overview of use, or -1.
int coarsestOverview(GDALDataset& dataset, const Presentation& presentation) {
  int best = -1;
  int64_t least = 0;
  for (int i = 0; i < overviewCount(dataset, presentation); ++i) {
    const auto shape = shapeOf(dataset, presentation, i);
    if (!shape) continue;
    const int64_t pixels = static_cast<int64_t>(shape.value().width) * shape.value().height;
    if (pixels < kLeastPixels || (best >= 0 && pixels >= least)) continue;
    best = i;
    least = pixels;
  }
  return best;
}

/// Pieces to look at: the whole picture in rows of blocks, or blocks spread evenly over it.
std::vector<PixelRect> piecesOf(const PictureShape& shape) {
  const auto blocks = [](int size, int block) { return (size - 1) / block + 1; };
  const int across = blocks(shape.width, shape.blockWidth),
            down = blocks(shape.height, shape.blockHeight);
  const bool all = static_cast<int64_t>(shape.width) * shape.height <= kMostPixels;
  const int columns = all ? 1 : std::min(across, 8);
  const int rows = all ? down : std::min(down, kMostBlocks / columns);
  std::vector<PixelRect> pieces;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      // The middle one of each of equal parts.
      const auto middle = [](int part, int parts, int count) {
        return static_cast<int>((2 * static_cast<int64_t>(part) + 1) * count / (2 * parts));
      };
      PixelRect piece;
      piece.x = all ? 0 : middle(column, columns, across) * shape.blockWidth;
      piece.y = middle(row, rows, down) * shape.blockHeight;
      piece.width = all ? shape.width : std::min(shape.blockWidth, shape.width - piece.x);
      piece.height = std::min(shape.blockHeight, shape.height - piece.y);
      if (!all) {
        piece.width = static_cast<int>(std::min<int64_t>(piece.width, kBlockPixels));
        piece.height = static_cast<int>(
            std::min<int64_t>(piece.height, std::max<int64_t>(1, kBlockPixels / piece.width)));
      }
      pieces.push_back(piece);
    }
  }
  return pieces;
}

double quantile(std::vector<double>& samples, double part) {
  const auto at = samples.begin() + static_cast<int64_t>(part * (samples.size() - 1) + 0.5);
  std::nth_element(samples.begin(), at, samples.end());
  return *at;
}

}  // namespace

Scale measureScale(GDALDataset& dataset, const Presentation& presentation, bool ownOverviews) {
  const int overview = ownOverviews ? coarsestOverview(dataset, presentation) : -1;
  const auto shape = shapeOf(dataset, presentation, overview);
  constexpr Scale kNothingFound{1, 0};
  if (!shape) return kNothingFound;
  const std::vector<PixelRect> pieces = piecesOf(shape.value());
  const bool all = static_cast<int64_t>(shape.value().width) * shape.value().height <= kMostPixels;
  std::vector<double> samples;
  SampleBuffer buffer;
  for (const PixelRect& piece : pieces) {
    if (!buffer.read(dataset, presentation, overview, piece)) continue;
    const size_t wanted = kMostPixels / pieces.size();
    // Odd, so that the pixels taken do not stand in columns.
    const size_t step = all ? 1 : (buffer.view().pixels / wanted) | 1;
    collectContent(presentation, buffer.view(), step, samples);
  }
  if (samples.empty()) return kNothingFound;
  const Scale scale{quantile(samples, 0.02), quantile(samples, 0.98)};
  if (scale.low < scale.high) return scale;
  const auto [least, largest] = std::minmax_element(samples.begin(), samples.end());
  return {*least, *largest};
}

bool coloursAreMultiplied(GDALDataset& dataset, const Presentation& presentation) {
  Presentation raw = presentation;
  raw.alphaMultiplied = false;
  const auto shape = shapeOf(dataset, raw, -1);
  if (!shape) return false;
  AlphaSigns signs;
  SampleBuffer buffer;
  for (const PixelRect& piece : piecesOf(shape.value())) {
    if (buffer.read(dataset, raw, -1, piece)) lookAtAlpha(raw, buffer.view(), signs);
    if (signs.exceeded) return false;
  }
  return signs.partial;
}

}  // namespace tarn::raster
