#include "components/convert/source.h"

#include "base/file.h"
#include "base/path.h"
#include "components/raster/georeferencefiles.h"
#include "components/raster/guardedfiles.h"

namespace tarn::convert {
namespace {

using raster::DatasetPtr;
using raster::GdalErrors;
using raster::GeoCandidate;

bool isPlaced(const GeoCandidate& candidate) {
  return candidate.transform ? raster::isUsable(*candidate.transform) : !candidate.points.empty();
}

void takeSystem(GDALDataset& dataset, OGRSpatialReference& system) {
  const OGRSpatialReference* found = dataset.GetSpatialRef();
  if (!found || found->IsEmpty()) found = dataset.GetGCPSpatialRef();
  if (found && !found->IsEmpty()) system = *found;
}

/// Surveyors' programs write the coordinate system of an image beside it.
void takeProjectionFile(const std::string& imagePath, OGRSpatialReference& system) {
  for (const char* ending : {".prj", ".PRJ"}) {
    const std::string path = joinPath(folderOf(imagePath), stemOf(imagePath) + ending);
    if (fileKind(path) != FileKind::kRegular) continue;
    const Result<std::string> text = readFile(path, raster::kMostSideFileBytes);
    OGRSpatialReference found;
    if (text && found.importFromWkt(text.value().c_str()) == OGRERR_NONE) {
      system = found;
      return;
    }
  }
}

}  // namespace

Result<std::unique_ptr<Source>> Source::open(const std::string& path,
                                             const std::vector<int>& shownBands) {
  raster::OpenOptions options;
  options.usePyramid = false;
  options.bands = shownBands;
  auto image = raster::RasterImage::open(path, options);
  if (!image) return image.status();
  Result<raster::ImageStamp> stamp = raster::stampOf(path);
  if (!stamp) return stamp.status();
  Result<DatasetPtr> dataset = image.value()->guarded()->open();
  if (!dataset) return dataset.status();
  auto source = std::make_unique<Source>();
  source->image_ = image.take();
  source->dataset_ = dataset.take();
  source->stamp_ = stamp.value();
  source->findPlace();
  return source;
}

void Source::findPlace() {
  const GdalErrors quiet;
  const raster::GuardedImage& guarded = *image_->guarded();
  const raster::GeoreferenceFound found = raster::findGeoreference(guarded, image_->facts());
  bool besideCounts = false;
  for (const GeoCandidate& candidate : found.candidates) {
    if (!isPlaced(candidate)) continue;
    transform_ = candidate.transform;
    points_ = candidate.points;
    besideCounts = candidate.name == nameOf(path()) + ".aux.xml";
    break;
  }
  takeSystem(*dataset_, system_);
  const bool hasAux = fileKind(path() + ".aux.xml") == FileKind::kRegular;
  if (hasAux && (besideCounts || system_.IsEmpty())) {
    if (const Result<DatasetPtr> beside = guarded.open("PAM")) takeSystem(*beside.value(), system_);
  }
  if (system_.IsEmpty()) takeProjectionFile(path(), system_);
}

}  // namespace tarn::convert
