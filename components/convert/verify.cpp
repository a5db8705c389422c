#include "components/convert/verify.h"

#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "components/convert/view.h"
#include "components/raster/gdalaccess.h"
#include "components/raster/rasterimage.h"

namespace tarn::convert {
namespace {

using raster::DatasetPtr;
using raster::GdalErrors;

constexpr int kPlaces = 4;    // across and down
constexpr int kSide = 64;     // pixels
constexpr double kMost = 20;  // of the mean of a place, after a compression that is not exact

struct Rect {
  int x = 0, y = 0, width = 0, height = 0;
};

/// Places spread over the image, from top to bottom.
std::vector<Rect> placesOf(int width, int height) {
  std::vector<Rect> places;
  const int w = std::min(width, kSide), h = std::min(height, kSide);
  const int across = width > kSide ? kPlaces : 1, down = height > kSide ? kPlaces : 1;
  for (int row = 0; row < down; ++row) {
    for (int column = 0; column < across; ++column) {
      const auto at = [](int room, int i, int count) {
        return count == 1 ? 0 : static_cast<int>(int64_t{room} * i / (count - 1));
      };
      places.push_back({at(width - w, column, across), at(height - h, row, down), w, h});
    }
  }
  return places;
}

bool readPlace(GDALDataset& dataset, const Rect& r, GDALDataType type, std::vector<uint8_t>& out) {
  const size_t bytes = static_cast<size_t>(GDALGetDataTypeSizeBytes(type));
  out.assign(static_cast<size_t>(r.width) * r.height * dataset.GetRasterCount() * bytes, 0);
  return dataset.RasterIO(GF_Read, r.x, r.y, r.width, r.height, out.data(), r.width, r.height, type,
                          dataset.GetRasterCount(), nullptr, 0, 0, 0, nullptr) == CE_None;
}

double meanOf(const std::vector<uint8_t>& bytes) {
  double sum = 0;
  for (const uint8_t byte : bytes) sum += byte;
  return sum / static_cast<double>(std::max<size_t>(1, bytes.size()));
}

bool pixelsFit(const Plan& plan, GDALDataset& view, GDALDataset& made) {
  const GDALDataType type = plan.lossless ? view.GetRasterBand(1)->GetRasterDataType() : GDT_Byte;
  const bool masked = hasMask(view);
  std::vector<uint8_t> wanted, found;
  for (const Rect& place : placesOf(view.GetRasterXSize(), view.GetRasterYSize())) {
    // Rows are decoded from the top one after the other, and their writer has gone over all.
    if (plan.writer == Writer::kRows && !masked && place.y > 0) break;
    if (!readPlace(view, place, type, wanted) || !readPlace(made, place, type, found)) return false;
    if (plan.lossless ? wanted != found
                      : !masked && std::fabs(meanOf(wanted) - meanOf(found)) > kMost)
      return false;
  }
  return true;
}

bool transformFits(GDALDataset& view, GDALDataset& made) {
  double wanted[6] = {}, found[6] = {};
  if (view.GetGeoTransform(wanted) != CE_None) return true;
  if (made.GetGeoTransform(found) != CE_None) return false;
  // A thousandth of a pixel at the far corner.
  const double reach = std::max(view.GetRasterXSize(), view.GetRasterYSize());
  const double pixel = std::hypot(wanted[1], wanted[4]);
  for (int i = 0; i < 6; ++i) {
    const double most = (i % 3 == 0 ? 1 : 1 / reach) * pixel / 1000;
    if (std::fabs(wanted[i] - found[i]) > most) return false;
  }
  return true;
}

/// Ellipsoid, projection and units as PROJ writes them. IMG files come back with a shift to WGS 84
/// around the same system and with their axes the other way round.
std::string definitionOf(const OGRSpatialReference& system) {
  char* text = nullptr;
  const bool done = system.exportToProj4(&text) == OGRERR_NONE && text;
  std::string kept;
  for (const std::string& word : split(done ? text : "", ' ')) {
    if (word.compare(0, 9, "+towgs84=") != 0) kept += word + ' ';
  }
  CPLFree(text);
  return kept;
}

bool systemFits(const OGRSpatialReference* wanted, const OGRSpatialReference* found) {
  if (!wanted || wanted->IsEmpty()) return true;
  if (!found || found->IsEmpty()) return false;
  const char* options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", "CRITERION=EQUIVALENT",
                           nullptr};
  if (wanted->IsSame(found, options) != 0) return true;
  const std::string definition = definitionOf(*wanted);
  return !trim(std::string_view(definition)).empty() && definition == definitionOf(*found);
}

void noteLosses(GDALDataset& view, GDALDataset& made, std::vector<std::string>& notes) {
  if (!transformFits(view, made)) notes.emplace_back("the format cannot keep its position");
  if (!systemFits(view.GetSpatialRef(), made.GetSpatialRef()) ||
      (view.GetGCPCount() > 0 && !systemFits(view.GetGCPSpatialRef(), made.GetGCPSpatialRef())))
    notes.emplace_back("the format keeps its coordinate system only in part");
  if (view.GetGCPCount() != made.GetGCPCount())
    notes.emplace_back("the format cannot keep its control points");
  int wanted = 0, found = 0;
  const double nodata = view.GetRasterBand(1)->GetNoDataValue(&wanted);
  const double kept = made.GetRasterBand(1)->GetNoDataValue(&found);
  const bool same = nodata == kept || (std::isnan(nodata) && std::isnan(kept));
  if (wanted != 0 && (found == 0 || !same))
    notes.emplace_back("the format cannot keep its nodata value");
}

}  // namespace

Status verifyConverted(const Plan& plan, GDALDataset& view, const std::string& path,
                       std::vector<std::string>& notes) {
  raster::OpenOptions options;
  options.usePyramid = false;
  auto image = raster::RasterImage::open(path, options);
  if (!image) return image.status();
  // Georeferencing in an .aux.xml counts here, too.
  Result<DatasetPtr> opened = image.value()->guarded()->open("PAM,INTERNAL");
  if (!opened) return opened.status();
  const GdalErrors errors;
  GDALDataset& made = *opened.value();
  Status damaged = Status::error(path + ": cannot be read back as it was written");
  if (made.GetRasterXSize() != view.GetRasterXSize() ||
      made.GetRasterYSize() != view.GetRasterYSize() ||
      made.GetRasterCount() != view.GetRasterCount() ||
      made.GetRasterBand(1)->GetRasterDataType() != view.GetRasterBand(1)->GetRasterDataType())
    return damaged;
  if (!pixelsFit(plan, view, made) || errors.failures() > 0) return damaged;
  noteLosses(view, made, notes);
  return Status::ok();
}

}  // namespace tarn::convert
