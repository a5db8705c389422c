// Tiles of a picture whose bytes come from far away: those of a view are fetched together.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "components/raster/remotebytes.h"
#include "components/raster/tiffdirectory.h"
#include "components/raster/tile.h"

namespace tarn::raster {

/// Reads as `inner` does, and knows the ranges of its tiles. `pictures` are the directories whose
/// blocks `inner` decodes (the picture and its mask), all of the inner grid's size; they must live
/// as long.
std::unique_ptr<TileReader> makeRemoteReader(std::unique_ptr<TileReader> inner,
                                             std::vector<const TiffDirectory*> pictures);

/// Why a file with these directories cannot be read in pieces, without its name; empty when it can.
std::string hindranceToPieces(const std::vector<TiffDirectory>& directories);

/// The file's ranges that hold a rectangle inside a picture, one a block.
std::vector<ByteRange> rangesOf(const TiffDirectory& picture, int x, int y, int width, int height);

}  // namespace tarn::raster
