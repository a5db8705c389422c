// A small picture with the description of a large one, for what a driver writes beside the pixels.
#pragma once

#include <gdal_priv.h>

#include <memory>

namespace tarn::convert {

/// Some black pixels of 8 bits in as many bands as the view has, with its position, control points,
/// metadata and what it says about its bands. Refers to the view, which has to live longer.
std::unique_ptr<GDALDataset> makeMiniature(GDALDataset& view);

}  // namespace tarn::convert
