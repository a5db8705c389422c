// Whether a finished file is what it should be.
#pragma once

#include <gdal_priv.h>

#include <string>
#include <vector>

#include "base/result.h"
#include "components/convert/plan.h"

namespace tarn::convert {

/// Opens the file as the program will and compares it with what was to be written: size, bands,
/// kind of samples, and pixels at places spread over the image (exactly, or their mean where the
/// compression is not exact). Fails with a sentence that names the path. What the format could not
/// keep of position, coordinate system and nodata is added to `notes`.
Status verifyConverted(const Plan& plan, GDALDataset& view, const std::string& path,
                       std::vector<std::string>& notes);

}  // namespace tarn::convert
