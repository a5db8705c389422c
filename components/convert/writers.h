// The ways to write the file of a conversion.
#pragma once

#include <gdal_priv.h>

#include <string>

#include "base/result.h"
#include "components/convert/plan.h"
#include "components/raster/progress.h"
#include "components/raster/rasterimage.h"

namespace tarn::convert {

/// Writes `path` (in a folder of its own, nothing stands there yet) as the plan says, and syncs it.
/// `view` describes the file; its pixels are used by the driver alone, tiles and blocks come from
/// the image's tile reader. Memory does not grow with the image's height. Failures name the path,
/// unless a driver gave no reason.
Status writeConverted(const Plan& plan, GDALDataset& view, const raster::RasterImage& image,
                      const std::string& path, const raster::Progress& progress);

}  // namespace tarn::convert
