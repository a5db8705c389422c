// Drawings that nobody here wrote.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "host/filing/drawingsave.h"

namespace tarn::host {

inline void collectDrawings(const std::string& folder, std::vector<std::string>& found) {
  for (const std::string& name : listFolder(folder)) {
    const std::string path = joinPath(folder, name);
    if (fileKind(path) == FileKind::kFolder) {
      collectDrawings(path, found);
    } else if (equalsIgnoreCase(std::string_view(extensionOf(path)), ".dxf")) {
      found.push_back(path);
    }
  }
}

/// Full paths, sorted; empty when the folder of real files is missing.
inline std::vector<std::string> realDrawings() {
  std::vector<std::string> found;
  collectDrawings(TARN_DATA_DIR, found);
  return found;
}

inline std::string bytesOf(const std::string& path) {
  auto bytes = readFile(path, uint64_t{1} << 30);
  return bytes ? bytes.take() : std::string();
}

/// Saves a drawing of these bytes, in two pieces.
inline Status saveBytes(const std::string& path, std::string_view bytes) {
  return saveDrawing(path, [&](const PieceTaker& take) {
    const Status status = take(bytes.substr(0, bytes.size() / 3));
    return status ? take(bytes.substr(bytes.size() / 3)) : status;
  });
}

}  // namespace tarn::host
