// What an exported file is like, decided from the image that it is made from.
#pragma once

#include <gdal.h>

#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/exportsamples.h"
#include "components/raster/warpexport.h"

class GDALDataset;

namespace tarn::raster {

struct ExportForm {
  NativeForm samples;
  /// The nodata value of the new file's bands; empty for none.
  std::vector<double> nodata;
  /// Creation options.
  std::vector<std::string> options;
  /// The source says by values or a mask where it has nothing.
  std::vector<double> sourceNodata;
  bool sourceHasMask = false;
};

GDALDataType gdalTypeOf(NativeType type);

/// Fails (a part of a sentence) for samples that are none of NativeType.
Result<ExportForm> decideExportForm(GDALDataset& source, const ExportRequest& request);

/// The new file, empty, with palette, colours, names, coordinate system and transform.
Status describeExport(GDALDataset& source, const RasterImage& image, const ExportRequest& request,
                      const ExportForm& form, GDALDataset& target);

}  // namespace tarn::raster
