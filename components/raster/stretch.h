// Contrast stretch of finished cells by tables of 256 values a channel. Pure black and pure white
// pixels mean "nothing here": they take no part and stay as they are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "components/raster/tile.h"

namespace tarn::raster {

enum class StretchMode { kNone = -1, kEqualise = 1, kDeviations = 2 };

/// How often every value occurs in the content of each channel.
struct Histogram {
  std::array<std::array<uint64_t, 256>, 3> counts{};

  /// Counts pixels of 1 or 3 bytes; gray counts in all three channels.
  void add(const uint8_t* pixels, size_t count, int channels);
  void add(const Histogram& other);
};

/// The histogram of a level: of all its tiles, or of some spread evenly when there are many.
/// Nothing when a tile cannot be read. `remote`: where the tiles come from, when that is far away.
std::optional<Histogram> sampleLevel(const TileReader& level, const RemoteBytes* remote = nullptr);

using StretchTables = std::array<std::array<uint8_t, 256>, 3>;

/// The new value of every value. kEqualise: the share of content at or below it, so that all values
/// become about equally frequent. kDeviations: mean - 2 and mean + 2 standard deviations become 0
/// and 255. Both are cut to 1..254, so that content never looks like nothing. A channel of one
/// value, or without content, stays as it is.
StretchTables makeStretchTables(const Histogram& histogram, StretchMode mode);

/// Applies the tables to `count` pixels R, G, B in place.
void applyStretch(const StretchTables& tables, uint8_t* rgb, size_t count);

}  // namespace tarn::raster
