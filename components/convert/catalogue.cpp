#include "components/convert/catalogue.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <optional>

#include "base/encoding.h"
#include "base/file.h"
#include "base/parallel.h"
#include "base/path.h"
#include "base/text.h"
#include "components/raster/imageoutline.h"

namespace tarn::convert {
namespace {

constexpr const char* kName = "catalog.json";

bool isTiff(const std::string& name) {
  const std::string ending = toLower(extensionOf(name));
  return ending == ".tif" || ending == ".tiff";
}

/// "2026-11-21T13:00:00Z".
std::string timeText(int64_t ns) {
  const std::time_t seconds = static_cast<std::time_t>(ns / 1000000000);
  std::array<char, 32> text{};
  if (const std::tm* parts = std::gmtime(&seconds))
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", parts);
  return text.data();
}

/// The corners in ground coordinates: left, bottom, right, top.
std::string boxText(const raster::ImageOutline& outline) {
  const raster::GeoTransform& t = outline.transform;
  const double right = t.x0 + std::fabs(t.a) * outline.width,
               bottom = t.y0 - std::fabs(t.e) * outline.height;
  return '[' + formatDouble(t.x0) + ',' + formatDouble(bottom) + ',' + formatDouble(right) + ',' +
         formatDouble(t.y0) + ']';
}

/// As text, rounded to a centimetre on the globe.
std::string degrees(double value) {
  constexpr double kParts = 1e7;
  return formatDouble(std::round(value * kParts) / kParts);
}

template <typename Number>
std::string polygonText(const std::vector<raster::GroundPoint>& points, const Number& number) {
  std::string ring;
  for (size_t i = 0; i <= points.size(); ++i) {
    const raster::GroundPoint& point = points[i % points.size()];
    ring += (i ? ",[" : "[") + number(point.x) + ',' + number(point.y) + ']';
  }
  return "{\"type\":\"Polygon\",\"coordinates\":[[" + ring + "]]}";
}

/// The place on the globe: "geometry" and "bbox".
std::string globeText(const std::vector<raster::GroundPoint>& points) {
  if (points.empty()) return "\"geometry\":null";
  raster::GroundPoint low = points.front(), high = low;
  for (const raster::GroundPoint& point : points) {
    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
  }
  return "\"geometry\":" + polygonText(points, degrees) + ",\"bbox\":[" + degrees(low.x) + ',' +
         degrees(low.y) + ',' + degrees(high.x) + ',' + degrees(high.y) + ']';
}

std::string itemText(const std::string& name, const FileTimes& times,
                     const raster::ImageOutline& outline) {
  const std::string time = quotedJson(timeText(times.modifiedNs));
  std::string properties = "\"datetime\":" + time + ",\"updated\":" + time + ",\"proj:shape\":[" +
                           std::to_string(outline.height) + ',' + std::to_string(outline.width) +
                           ']';
  if (outline.isPlaced)
    properties += ",\"proj:bbox\":" + boxText(outline) +
                  ",\"proj:geometry\":" + polygonText(outline.corners, formatDouble);
  if (outline.coordinateSystem > 0)
    properties += ",\"proj:epsg\":" + std::to_string(outline.coordinateSystem);
  return "{\"type\":\"Feature\",\"stac_version\":\"1.0.0\",\"id\":" + quotedJson(name) + ',' +
         globeText(outline.geographic) + ",\"properties\":{" + properties +
         "},\"links\":[],\"assets\":{\"image\":{\"href\":" +
         quotedJson("./" + percentEncoded(name)) +
         ",\"type\":\"image/tiff; application=geotiff; profile=cloud-optimized\","
         "\"roles\":[\"data\"],\"file:size\":" +
         std::to_string(times.size) + "}}}";
}

/// The items of a folder's own images.
std::string itemsText(const std::string& folder, const std::vector<std::string>& names,
                      CatalogueReport& report) {
  std::vector<std::optional<Result<raster::ImageOutline>>> outlines(names.size());
  parallelFor(names.size(),
              [&](size_t i) { outlines[i] = raster::readOutline(joinPath(folder, names[i])); });
  std::string items;
  for (size_t i = 0; i < names.size(); ++i) {
    const Result<raster::ImageOutline>& outline = *outlines[i];
    if (!outline) {
      report.problems.push_back(outline.message() + "; it is not listed");
      continue;
    }
    items += (items.empty() ? "\n" : ",\n") +
             itemText(names[i], fileTimes(joinPath(folder, names[i])), outline.value());
    ++report.images;
  }
  return items;
}

/// `found`: whether there are images in the folder or below.
Status writeFolder(const std::string& folder, bool& found, CatalogueReport& report) {
  std::string links = "{\"rel\":\"self\",\"href\":\"./catalog.json\"}";
  std::vector<std::string> images;
  for (const std::string& name : listFolder(folder)) {
    const std::string path = joinPath(folder, name);
    if (isFolderItself(path)) {
      bool below = false;
      if (Status written = writeFolder(path, below, report); !written) return written;
      if (below)
        links += ",{\"rel\":\"child\",\"href\":" +
                 quotedJson("./" + percentEncoded(name) + '/' + kName) + '}';
      found = found || below;
    } else if (isTiff(name) && fileKind(path) == FileKind::kRegular) {
      images.push_back(name);
    }
  }
  const std::string items = itemsText(folder, images, report);
  found = found || !items.empty();
  const std::string target = joinPath(folder, kName);
  // A folder whose images have gone keeps no list of them.
  if (!found && fileKind(target) == FileKind::kMissing) return Status::ok();
  ++report.catalogues;
  return writeFileAtomically(target,
                             "{\"type\":\"FeatureCollection\",\"stac_version\":\"1.0.0\","
                             "\"links\":[" +
                                 links + "],\"features\":[" + items + "]}\n");
}

}  // namespace

Status writeCatalogues(const std::string& folder, CatalogueReport& report) {
  if (fileKind(folder) != FileKind::kFolder) return Status::error(folder + ": is no folder");
  bool found = false;
  return writeFolder(folder, found, report);
}

}  // namespace tarn::convert
