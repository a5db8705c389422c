// A level turned by quarters or mirrored: every pixel is one of the level's.
#pragma once

#include <memory>

#include "components/raster/cachedlevel.h"
#include "components/raster/placement.h"

namespace tarn::raster {

std::unique_ptr<TileReader> makeTurnedReader(std::shared_ptr<const CachedLevel> source, Turn turn);

}  // namespace tarn::raster
