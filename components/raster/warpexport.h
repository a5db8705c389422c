// An image with all its bands, in its own sample type, written to a file through a transformation.
#pragma once

#include <memory>
#include <string>

#include "base/result.h"
#include "components/raster/progress.h"
#include "components/raster/warpedimage.h"

namespace tarn::raster {

enum class ExportFormat { kTiff, kImagine };
enum class ExportResampling { kNearest, kBilinear };

struct ExportRequest {
  /// "x.tif" or "x.img"; an older file there is replaced once the new one is finished.
  std::string target;
  ExportFormat format = ExportFormat::kTiff;
  ExportResampling resampling = ExportResampling::kBilinear;
  /// The grid that is written; its mapping leads to presented pixels of the image.
  WarpGrid grid;
};

/// Why the target can be no export of the image (it is the image or beside a folder that is not
/// there or cannot be written), in a sentence that names it. Writes nothing.
Status checkExportTarget(const RasterImage& image, const std::string& target);

/// Writes a tiled TIFF (a BigTIFF when it is large) or an IMG with the image's bands, sample type,
/// palette and coordinate system, the grid's transform in the file and in a world file, and a .prj.
/// Outside the image there is the image's nodata value; without one, alpha 0 where it has alpha,
/// else a value that content does not have. Made beside the target, checked, renamed. Palettes and
/// single bits are never blended. Memory does not grow with the image. Failures name the target or
/// the image; an older target is then as it was.
Status exportWarped(const RasterImage& image, const ExportRequest& request,
                    const Progress& progress);

}  // namespace tarn::raster
