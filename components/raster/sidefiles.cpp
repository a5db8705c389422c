#include "components/raster/sidefiles.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <vector>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "components/raster/georeference.h"

namespace tarn::raster {
namespace {

/// The six lines; the position is the centre of the first pixel.
std::string worldFileText(const double* t) {
  std::string text;
  for (const double number :
       {t[1], t[4], t[2], t[5], t[0] + t[1] / 2 + t[2] / 2, t[3] + t[4] / 2 + t[5] / 2}) {
    text += formatDouble(number) + "\n";
  }
  return text;
}

std::string esriText(const OGRSpatialReference& system) {
  char* text = nullptr;
  const char* options[] = {"FORMAT=WKT1_ESRI", nullptr};
  const bool done = system.exportToWkt(&text, options) == OGRERR_NONE && text;
  std::string result = done ? text : "";
  CPLFree(text);
  return result;
}

Status writeSynced(const std::string& path, const std::string& text) {
  OutputFile file;
  Status status = file.create(path);
  if (status) status = file.writeAt(0, text.data(), text.size());
  return status ? file.finish() : status;
}

}  // namespace

Status writeSideFiles(GDALDataset& dataset, const std::string& path) {
  const std::string folder = folderOf(path);
  double transform[6] = {};
  if (dataset.GetGeoTransform(transform) == CE_None) {
    // In small letters, as every program looks for it.
    const std::string name = worldFileNames(stemOf(path) + toLower(extensionOf(path))).front();
    if (Status written = writeSynced(joinPath(folder, name), worldFileText(transform)); !written)
      return written;
  }
  const OGRSpatialReference* system = dataset.GetSpatialRef();
  const std::string text = system ? esriText(*system) : "";
  return text.empty() ? Status::ok()
                      : writeSynced(joinPath(folder, stemOf(path) + ".prj"), text + "\n");
}

Status moveIntoPlace(const std::string& work, const std::string& target) {
  const std::string image = nameOf(target), folder = folderOf(target);
  std::vector<std::string> names;
  for (const std::string& name : listFolder(work)) {
    if (name != image && name != "lock") names.push_back(name);
  }
  for (const char* ending : {".aux.xml", ".ovr", ".rgb.ovr", ".msk", ".msk.ovr"}) {
    const std::string stale = image + ending;
    const bool replaced = std::find(names.begin(), names.end(), stale) != names.end();
    if (replaced || fileKind(joinPath(folder, stale)) == FileKind::kMissing) continue;
    if (Status removed = removeAll(joinPath(folder, stale)); !removed) return removed;
  }
  names.push_back(image);
  for (const std::string& name : names) {
    const std::string from = joinPath(work, name);
    if (Status synced = syncFile(from); !synced) return synced;
    if (Status moved = replaceFile(from, joinPath(folder, name)); !moved) return moved;
  }
  return Status::ok();
}

}  // namespace tarn::raster
