#include "components/raster/imageoutline.h"

#include <gdal_priv.h>

#include "base/file.h"
#include "components/raster/gdalaccess.h"
#include "components/raster/imagefacts.h"
#include "components/raster/placement.h"
#include "components/raster/remotetilereader.h"
#include "components/raster/tiffdirectory.h"

namespace tarn::raster {

Result<ImageOutline> readOutline(const std::string& path) {
  RandomFile file;
  if (Status opened = file.open(path); !opened) return opened;
  const auto directories = readTiffDirectories(file, fileTimes(path).size);
  if (!directories) return Status::error(path + ": " + directories.message());
  const std::string hindrance = hindranceToPieces(directories.value());
  if (!hindrance.empty()) return Status::error(path + ": " + hindrance);
  const GuardedImage guarded(path);
  const Result<DatasetPtr> dataset = guarded.open();
  if (!dataset) return dataset.status();
  const GdalErrors quiet;
  const ImageFacts facts = describe(*dataset.value());
  std::vector<GeoCandidate> candidates;
  if (facts.innerGeoTransform) candidates.push_back({path, facts.innerGeoTransform, {}, -1});
  if (!facts.innerControlPoints.empty())
    candidates.push_back({path, {}, facts.innerControlPoints, -1});
  const Placement placement = placeImage(candidates, facts.width, facts.height);
  return ImageOutline{placement.width, placement.height, placement.transform, !candidates.empty(),
                      facts.coordinateSystem};
}

}  // namespace tarn::raster
