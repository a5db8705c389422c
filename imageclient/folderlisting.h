// What a folder of a web server holds, read from a catalogue or from the server's own index page.
// Pure; both take anything for input.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/result.h"

namespace tarn::client {

/// In ground coordinates of the image's coordinate system.
struct Footprint {
  double left = 0;
  double bottom = 0;
  double right = 0;
  double top = 0;
};

struct FolderItem {
  /// Below the folder, not encoded; of a folder without '/' at its end.
  std::string path;
  bool isFolder = false;
  /// -1 when it is not known.
  int64_t bytes = -1;
  /// As it is shown; may be empty.
  std::string time;
  std::optional<Footprint> footprint;
};

/// Folders and TIFF images of an index page as nginx and Apache make them: links to names right in
/// the folder, followed by a time and a size. Folders come first, both by name.
std::vector<FolderItem> parseIndexPage(const std::string& html);

/// Folders and images of a STAC item collection: an item's first asset that is a TIFF below the
/// folder, its "file:size", "proj:bbox" and time; links of relation "child" to catalogues of
/// folders below. Fails on what is none.
Result<std::vector<FolderItem>> parseCatalogue(const std::string& json);

}  // namespace tarn::client
