// Native samples of an image for its export, by several threads at once.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "components/raster/cachedlevel.h"
#include "components/raster/exportform.h"
#include "components/raster/gdalaccess.h"

namespace tarn::raster {

class ExportSource {
 public:
  ExportSource(const RasterImage& image, const ExportForm& form);

  /// Fills the patch, whose part lies inside the image. False when that cannot be read.
  bool read(NativePatch& patch);

 private:
  bool readPlain(NativePatch& patch) const;
  bool readByGdal(GDALDataset& dataset, NativePatch& patch) const;
  void findContent(NativePatch& patch) const;

  const RasterImage& image_;
  const ExportForm& form_;
  /// Where the decoded pixels are the file's samples.
  std::unique_ptr<CachedLevel> plain_;
  std::mutex mutex_;
  std::vector<DatasetPtr> idle_;
};

}  // namespace tarn::raster
