// Images whose files are not where the drawing says: finding them again by name and size.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class AcApDocument;
class CDocData;

namespace tarn::image {

/// A file that is looked for. Paths are UTF-8.
struct MissingFile {
  std::string path;
  std::optional<uint64_t> size;  ///< bytes, when known
};

struct FoundFile {
  std::string path;
  uint64_t size = 0;
};

/// For each missing file the path of the found one: that of the same name (letters may differ in
/// case) and, when known, size; among several the one whose folders agree longest from the name
/// upwards, then the first. Empty where there is none.
std::vector<std::string> matchMissing(const std::vector<MissingFile>& missing,
                                      const std::vector<FoundFile>& found);

/// Stored paths that lead to no file.
std::vector<std::wstring> missingImagePaths(const CDocData& record, const AcApDocument& document);

/// Looks for all missing images in a folder that the user chooses and in those inside it, and puts
/// what was found into the stored list and the drawing.
void relinkImages(AcApDocument* document, CDocData& record);

/// Keeps the sizes of those files that are there, for a later search, in the drawing's own
/// dictionary. The caller has the document locked.
void rememberFileSizes(const CDocData& record, const std::vector<std::wstring>& paths);

}  // namespace tarn::image
