// Tiles to the cells of a window. Pure black and pure white pixels mean "nothing here": averages
// leave them out, a cell is black only when most of what it covers is nothing, and an average of
// real content never is pure black or white.
#pragma once

#include <cstdint>
#include <vector>

#include "components/raster/taps.h"
#include "components/raster/tile.h"

namespace tarn::raster {

/// The tiles of a rectangle of one level's grid, row by row.
struct TileBlock {
  TileGrid grid;
  int firstColumn = 0;
  int firstRow = 0;
  int columns = 0;
  int rows = 0;
  std::vector<TilePtr> tiles;
  /// A cell with less content than this part of it is nothing.
  float leastContent = 0.4999F;

  const Tile& at(int column, int row) const {
    return *tiles[static_cast<size_t>(row - firstRow) * columns + (column - firstColumn)];
  }
};

/// Writes the cells that `across` and `down` name (R, G, B; `stride` bytes between rows of `out`,
/// which begins at cell (0, 0) of the window). Other cells are left alone.
void resample(const TileBlock& block, const AxisTaps& across, const AxisTaps& down, uint8_t* out,
              size_t stride);

}  // namespace tarn::raster
