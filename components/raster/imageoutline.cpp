#include "components/raster/imageoutline.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/file.h"
#include "components/raster/gdalaccess.h"
#include "components/raster/imagefacts.h"
#include "components/raster/placement.h"
#include "components/raster/remotetilereader.h"
#include "components/raster/tiffdirectory.h"

namespace tarn::raster {
namespace {

/// The image's corners by its own transform when it has one, else those of what is presented.
std::vector<GroundPoint> cornersOf(const ImageFacts& facts, const Placement& placement) {
  const bool isOwn = facts.innerGeoTransform.has_value();
  const GeoTransform& t = isOwn ? *facts.innerGeoTransform : placement.transform;
  const double width = isOwn ? facts.width : placement.width,
               height = isOwn ? facts.height : placement.height;
  const auto at = [&t](double column, double row) {
    return GroundPoint{t.x0 + t.a * column + t.b * row, t.y0 + t.d * column + t.e * row};
  };
  std::vector<GroundPoint> corners = {at(0, height), at(width, height), at(width, 0), at(0, 0)};
  // An image that is stored mirrored goes round the other way.
  if (t.a * t.e - t.b * t.d > 0) std::reverse(corners.begin(), corners.end());
  return corners;
}

/// Corners and the middles of the sides, which are not straight lines on the globe.
std::vector<GroundPoint> onTheGlobe(const std::vector<GroundPoint>& corners, GDALDataset& dataset) {
  const OGRSpatialReference* own = dataset.GetSpatialRef();
  if (!own) own = dataset.GetGCPSpatialRef();
  if (!own) return {};
  OGRSpatialReference from(*own), to;
  from.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  to.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  if (to.SetWellKnownGeogCS("WGS84") != OGRERR_NONE) return {};
  const std::unique_ptr<OGRCoordinateTransformation> change(
      OGRCreateCoordinateTransformation(&from, &to));
  if (!change) return {};
  std::vector<GroundPoint> points;
  for (size_t i = 0; i < corners.size(); ++i) {
    const GroundPoint &here = corners[i], &next = corners[(i + 1) % corners.size()];
    for (GroundPoint point : {here, GroundPoint{(here.x + next.x) / 2, (here.y + next.y) / 2}}) {
      if (!change->Transform(1, &point.x, &point.y) || !std::isfinite(point.x) ||
          !std::isfinite(point.y) || std::fabs(point.x) > 180 || std::fabs(point.y) > 90)
        return {};
      points.push_back(point);
    }
  }
  // Across the 180th meridian it would go the long way round.
  const auto [west, east] = std::minmax_element(
      points.begin(), points.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
  constexpr double kHalfRound = 180;
  return east->x - west->x < kHalfRound ? points : std::vector<GroundPoint>();
}

}  // namespace

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
  ImageOutline outline;
  outline.width = placement.width;
  outline.height = placement.height;
  outline.transform = placement.transform;
  outline.isPlaced = !candidates.empty();
  outline.coordinateSystem = facts.coordinateSystem;
  if (outline.isPlaced) {
    outline.corners = cornersOf(facts, placement);
    outline.geographic = onTheGlobe(outline.corners, *dataset.value());
  }
  return outline;
}

}  // namespace tarn::raster
