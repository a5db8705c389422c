// Inner loops of resampling.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::raster {

/// Weighted sum of `count` (1 to 4) rows of bytes; weights are 256ths that sum to 256.
void blendRows(const uint8_t* const* rows, const uint16_t* weights, int count, size_t bytes,
               uint16_t* out);

/// Adds weight * byte to each number.
void addRow(const uint8_t* row, float weight, size_t bytes, float* sums);

/// The same for pixels that are not pure black or white, and the weight to `cover` for each of
/// them.
void addRowWithoutKeys(const uint8_t* row, float weight, size_t pixels, int channels, float* sums,
                       float* cover);

/// Cells of a blended row: cell i is the sum of `taps` pixels from start[i] with weights of
/// 65536ths (at most 65535), as R, G, B. The weights go by groups of four cells: for each tap, four
/// times each cell's weight. `start` and the weights are filled up to whole groups. The row must be
/// readable one pixel further. No cell becomes pure black or white.
void gatherCells(const uint16_t* row, const int* start, const uint16_t* weights, int taps,
                 int cells, int channels, uint8_t* out);

/// Blended masks where all is content.
constexpr uint16_t kFullCover = 255 * 256;

/// Takes pure black and white out of a row: `content` has 0 in their place, `mask` 0 for each byte
/// of theirs and 255 for the others.
void splitKeys(const uint8_t* row, size_t pixels, int channels, uint8_t* content, uint8_t* mask);

/// gatherCells() for rows of which some pixels are nothing: `row` is blended from content and
/// `cover` from masks. A cell is black when less than half of it is content.
void gatherCoveredCells(const uint16_t* row, const uint16_t* cover, const int* start,
                        const uint16_t* weights, int taps, int cells, int channels, uint8_t* out);

/// A cell's value from its sum: rounded, and never pure black or white.
void storeContent(const float* sum, int channels, float scale, uint8_t* out);

}  // namespace tarn::raster
