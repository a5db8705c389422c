// Where an image's pyramid is, whether it may be used, and what a build leaves when it dies.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"

namespace tarn::raster {

/// Pyramid tiles are squares of this many pixels.
constexpr int kPyramidTile = 256;

/// Sizes of the levels below the image, each half of the one before (rounded up), down to one tile.
struct LevelSize {
  int width = 0;
  int height = 0;
};
std::vector<LevelSize> pyramidLevels(int width, int height);

/// Folders that may hold the pyramid of an image.
struct PyramidPlaces {
  /// Beside the image; empty when the image must not be written beside.
  std::string folder;
  /// The user's cache folder, for images in read-only folders; empty for none.
  std::string cacheFolder;
};

/// Path of the pyramid beside the image, "NAME.tif.ovr".
std::string pyramidPath(const std::string& imagePath, const std::string& folder);
/// Path of the pyramid in the cache folder; the image's whole path makes its name.
std::string cachedPyramidPath(const std::string& imagePath, const std::string& cacheFolder);

enum class PyramidState { kMissing, kOurs, kForeign, kStale };

/// What stands at `path` for the image: ours (its stamp fits), of another program (right size and
/// channels, not older than the image), stale or damaged, or nothing. `cached` pyramids are never
/// another program's.
PyramidState pyramidState(const std::string& path, const std::string& imagePath, int width,
                          int height, int channels, bool cached);

/// The hidden folder in which a pyramid is built, beside the place where it will stand. One a
/// pyramid, so that two builds meet and leftovers are found without searching.
std::string buildFolderPath(const std::string& pyramid);
/// The lock file in it; a living build holds its lock.
std::string buildLockPath(const std::string& buildFolder);

/// Removes what a build of the pyramid that died has left. A living build is left alone.
void removeDeadBuild(const std::string& pyramid);

}  // namespace tarn::raster
