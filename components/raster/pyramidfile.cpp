#include "components/raster/pyramidfile.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/file.h"
#include "base/filelock.h"
#include "base/path.h"
#include "components/raster/pyramidstamp.h"
#include "components/raster/tiffdirectory.h"

namespace tarn::raster {
namespace {

std::string hashName(const std::string& text) {
  static const char* kDigits = "0123456789abcdef";
  uint64_t hash = hashBytes(text.data(), text.size());
  std::string name(16, '0');
  for (char& c : name) {
    c = kDigits[hash & 15];
    hash >>= 4;
  }
  return name;
}

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

std::string pyramidPath(const std::string& imagePath, const std::string& folder) {
  return joinPath(folder, nameOf(imagePath) + ".ovr");
}

std::string cachedPyramidPath(const std::string& imagePath, const std::string& cacheFolder) {
  return joinPath(joinPath(cacheFolder, "pyramids"),
                  hashName(absolutePath(imagePath)) + ".tif.ovr");
}

PyramidState pyramidState(const std::string& path, const std::string& imagePath, int width,
                          int height, int channels, bool cached) {
  if (fileKind(path) != FileKind::kRegular) return PyramidState::kMissing;
  RandomFile file;
  if (!file.open(path)) return PyramidState::kMissing;
  const auto directories = readTiffDirectories(file, fileTimes(path).size);
  if (!directories) return PyramidState::kStale;
  const TiffDirectory& first = directories.value().front();
  if (!isReduction(first, width, height) || first.samples != channels || !first.plainBytes)
    return PyramidState::kStale;
  if (const std::optional<ImageStamp> stamp = stampInMetadata(first.gdalMetadata)) {
    const auto now = stampOf(imagePath);
    return now && now.value() == *stamp ? PyramidState::kOurs : PyramidState::kStale;
  }
  const bool current = fileTimes(path).modifiedNs >= fileTimes(imagePath).modifiedNs;
  return current && !cached ? PyramidState::kForeign : PyramidState::kStale;
}

std::string buildFolderPath(const std::string& pyramid) {
  return joinPath(folderOf(pyramid), ".tarnpyramid-" + hashName(nameOf(pyramid)));
}

std::string buildLockPath(const std::string& buildFolder) {
  return joinPath(buildFolder, "lock");
}

void removeDeadBuild(const std::string& pyramid) {
  const std::string build = buildFolderPath(pyramid);
  if (fileKind(build) != FileKind::kFolder) return;
  FileLock lock;
  if (!lock.tryLock(buildLockPath(build))) return;
  // What cannot be removed here belongs to another user, whose own next open removes it.
  static_cast<void>(removeAll(build));
}

}  // namespace tarn::raster
