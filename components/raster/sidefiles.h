// The files that stand beside an image and belong to it.
#pragma once

#include <string>

#include "base/result.h"

class GDALDataset;

namespace tarn::raster {

/// Writes the world file (.tfw, .jgw, .igw) and the .prj of a dataset beside `path`, as far as it
/// has a transform and a coordinate system.
Status writeSideFiles(GDALDataset& dataset, const std::string& path);

/// Moves a finished image and all files beside it out of the work folder to `target`: synced, the
/// image last, so that it is there only when the others are. What an image that stood there before
/// had beside it, by its whole name, goes.
Status moveIntoPlace(const std::string& work, const std::string& target);

}  // namespace tarn::raster
