// The levels of an image as they come out north up, made from its own when they are asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "components/raster/level.h"
#include "components/raster/placement.h"
#include "components/raster/resampledreader.h"

namespace tarn::raster {

/// A presented level for each of `own`, which must live as long; its factors and origin count
/// presented pixels; `width` and `height` are the image's own. `own` is read through the tile cache
/// under the number `cacheImage`. The placement must not be as stored.
std::vector<Level> presentLevels(const std::vector<Level>& own, uint64_t cacheImage,
                                 const Placement& placement, int width, int height);

/// The same by a curved mapping; in `grid` the factor is not looked at. `pixelLength` is that of
/// WarpGrid.
std::vector<Level> warpLevels(const std::vector<Level>& own, uint64_t cacheImage,
                              const std::shared_ptr<const CurvedMapping>& mapping,
                              const PresentedGrid& grid, double pixelLength);

}  // namespace tarn::raster
