#include "components/raster/georeferencefiles.h"

#include <gdal_priv.h>

#include <utility>

#include "base/file.h"
#include "base/path.h"
#include "components/raster/guardedfiles.h"

namespace tarn::raster {
namespace {

constexpr const char* kInside = "the image itself";

/// Control points of a form that only GDAL reads.
void readForeignPoints(const GuardedImage& image, AuxFacts& aux) {
  const GdalErrors quiet;
  const Result<DatasetPtr> dataset = image.open("PAM");
  if (!dataset) return;
  const ImageFacts facts = describe(*dataset.value());
  aux.points = facts.innerControlPoints;
  aux.coordinateSystem = facts.coordinateSystem;
}

AuxFacts readAux(const GuardedImage& image, const std::string& path, const ImageFacts& facts) {
  AuxFacts aux;
  if (fileKind(path) != FileKind::kRegular) return aux;
  if (const auto xml = readFile(path, kMostSideFileBytes)) {
    const GdalErrors quiet;
    aux = parseAuxFile(xml.value());
  }
  if (aux.hasForeignPoints && facts.driver == "GTiff") readForeignPoints(image, aux);
  return aux;
}

void addWorldFile(const std::string& folder, const std::string& imageName,
                  GeoreferenceFound& found) {
  std::string useless;
  for (const std::string& name : worldFileNames(imageName)) {
    const std::string path = joinPath(folder, name);
    if (fileKind(path) != FileKind::kRegular) continue;
    // Where capitals do not matter the same file has several of the names.
    if (!useless.empty() && isSameFile(path, useless)) continue;
    const auto text = readFile(path, kMostSideFileBytes);
    const auto transform = text ? parseWorldFile(text.value()) : std::nullopt;
    if (transform) {
      found.candidates.push_back({name, transform, {}, -1});
      return;
    }
    found.notes.push_back("its world file " + name + " is not usable and is ignored");
    useless = path;
  }
}

void add(const std::string& name, const std::optional<GeoTransform>& transform,
         const std::vector<ControlPoint>& points, int coordinateSystem,
         std::vector<GeoCandidate>& candidates) {
  if (transform) candidates.push_back({name, transform, {}, -1});
  if (!points.empty()) candidates.push_back({name, {}, points, coordinateSystem});
}

}  // namespace

GeoreferenceFound findGeoreference(const GuardedImage& image, const ImageFacts& facts) {
  GeoreferenceFound found;
  if (image.isRemote()) {
    add(kInside, facts.innerGeoTransform, facts.innerControlPoints, -1, found.candidates);
    return found;
  }
  const std::string folder = folderOf(image.path()), name = nameOf(image.path());
  const std::string auxName = name + ".aux.xml";
  const AuxFacts aux = readAux(image, joinPath(folder, auxName), facts);
  found.namesOverviewFile = aux.namesOverviewFile;
  found.coordinateSystem = aux.coordinateSystem;
  add(auxName, aux.transform, aux.points, aux.coordinateSystem, found.candidates);
  addWorldFile(folder, name, found);
  add(kInside, facts.innerGeoTransform, facts.innerControlPoints, -1, found.candidates);
  return found;
}

}  // namespace tarn::raster
