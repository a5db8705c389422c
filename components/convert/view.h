// A source as GDAL's drivers copy it: the bands that are wanted, placed as it counts.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "components/convert/plan.h"
#include "components/convert/source.h"

namespace tarn::convert {

/// The name of the metadata item that says what a file was converted from, and how.
constexpr const char* kMarkItem = "TARN_CONVERTED";

/// The image as it is stored: samples, colour tables, nodata, masks, metadata. The source must live
/// as long. `mark` becomes the item kMarkItem.
std::unique_ptr<GDALDataset> makeStoredView(const Source& source, const Plan& plan,
                                            const std::string& mark);

/// The image as it is shown: gray or RGB of 8 bits in the grid of the file; where it states that
/// there is nothing, nodata is 0.
std::unique_ptr<GDALDataset> makeShownView(const Source& source, const std::string& mark);

/// Gives a new file of a driver all that the view says, but no pixels.
void describeLike(GDALDataset& view, GDALDataset& target);

/// True when a mask says for all bands where the image is; pixels behind it may be anything.
bool hasMask(GDALDataset& view);

}  // namespace tarn::convert
