// Lists of images for servers: catalog.json in each folder, a STAC item collection.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/result.h"

namespace tarn::convert {

struct CatalogueReport {
  size_t catalogues = 0;
  size_t images = 0;
  /// A sentence for each TIFF that cannot be given out in pieces and so is not listed.
  std::vector<std::string> problems;
};

/// Writes catalog.json into the folder and into each below it that has images there or further
/// down: each image's file, size, time, outline (on the globe and in its own coordinate system) and
/// the folders below. Links are not followed. Fails, with a sentence that names it, on a folder
/// that cannot be read or written; files that were there stay whole.
Status writeCatalogues(const std::string& folder, CatalogueReport& report);

}  // namespace tarn::convert
