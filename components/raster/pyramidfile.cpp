#include "components/raster/pyramidfile.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "base/file.h"
#include "base/path.h"
#include "components/raster/tiffdirectory.h"

namespace tarn::raster {
namespace {

/// True when the picture can be a reduction of an image of that size.
bool isReduction(const TiffDirectory& picture, int width, int height) {
  if (picture.width >= static_cast<uint32_t>(width) &&
      picture.height >= static_cast<uint32_t>(height))
    return false;
  const double factor = std::max(static_cast<double>(width) / picture.width,
                                 static_cast<double>(height) / picture.height);
  // Sizes are rounded up or down by the programs that make them.
  return std::fabs(width / factor - picture.width) <= 1.01 &&
         std::fabs(height / factor - picture.height) <= 1.01;
}

std::string endingOf(const PyramidSubject& subject) {
  return subject.form.empty() ? ".ovr" : ".rgb.ovr";
}

/// What stands at `path` for the image; its path and mark too when it may be used.
PyramidState examine(const std::string& path, const PyramidSubject& subject, FoundPyramid& found) {
  if (fileKind(path) != FileKind::kRegular) return PyramidState::kMissing;
  RandomFile file;
  if (!file.open(path)) return PyramidState::kMissing;
  const auto directories = readTiffDirectories(file, fileTimes(path).size);
  if (!directories) return PyramidState::kStale;
  const TiffDirectory& first = directories.value().front();
  if (!isReduction(first, subject.width, subject.height)) return PyramidState::kStale;
  found.path = path;
  if (std::optional<PyramidMark> mark = markInMetadata(first.gdalMetadata)) {
    const auto now = stampOf(subject.imagePath);
    const bool fits = now && now.value() == mark->stamp && mark->form == subject.form &&
                      first.samples == subject.channels && first.plainBytes;
    found.mark = std::move(*mark);
    return fits ? PyramidState::kOurs : PyramidState::kStale;
  }
  const bool current = fileTimes(path).modifiedNs >= fileTimes(subject.imagePath).modifiedNs;
  const bool fits = first.samples == subject.bands && (first.plainBytes || !subject.form.empty());
  return current && fits ? PyramidState::kForeign : PyramidState::kStale;
}

}  // namespace

std::vector<LevelSize> pyramidLevels(int width, int height) {
  std::vector<LevelSize> levels;
  while (width > kPyramidTile || height > kPyramidTile) {
    width = width / 2 + width % 2;
    height = height / 2 + height % 2;
    levels.push_back({width, height});
  }
  return levels;
}

std::string pyramidPath(const PyramidSubject& subject, const std::string& folder) {
  return joinPath(folder, nameOf(subject.imagePath) + endingOf(subject));
}

std::string cachedPyramidPath(const PyramidSubject& subject, const std::string& cacheFolder) {
  return joinPath(joinPath(cacheFolder, "pyramids"),
                  hashName(absolutePath(subject.imagePath)) + ".tif" + endingOf(subject));
}

FoundPyramid findPyramid(const PyramidSubject& subject, const PyramidPlaces& places) {
  FoundPyramid found;
  const std::string own = pyramidPath(subject, places.folder);
  const std::string standard = subject.imagePath + ".ovr";
  const std::string cached =
      places.cacheFolder.empty() ? "" : cachedPyramidPath(subject, places.cacheFolder);
  const bool plain = subject.form.empty();
  for (const std::string& path : {own, plain ? std::string() : standard, cached}) {
    if (path.empty()) continue;
    found.state = examine(path, subject, found);
    if (found.state == PyramidState::kOurs) return found;
    // Another program writes where all programs look.
    const bool shared = path == standard || (plain && path == own);
    if (found.state == PyramidState::kForeign && shared) return found;
    const bool ours = plain || path != standard;
    found.stale = found.stale || (ours && found.state != PyramidState::kMissing);
  }
  return {PyramidState::kMissing, {}, {}, found.stale};
}

}  // namespace tarn::raster
