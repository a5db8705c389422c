// Where an image's pyramid is, whether it may be used, and what a build leaves when it dies.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/pyramidstamp.h"

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

/// The image that a pyramid is for.
struct PyramidSubject {
  std::string imagePath;
  int width = 0;
  int height = 0;
  /// Of the pyramid.
  int channels = 3;
  /// Of the image.
  int bands = 3;
  /// How the image's samples become the pyramid's pixels; empty when they simply are.
  std::string form;
};

/// Path of the pyramid beside the image: "NAME.tif.ovr", where every program looks, or
/// "NAME.tif.rgb.ovr" when the pyramid's pixels are not those of the image's bands.
std::string pyramidPath(const PyramidSubject& subject, const std::string& folder);
/// Path of the pyramid in the cache folder; the image's whole path makes its name.
std::string cachedPyramidPath(const PyramidSubject& subject, const std::string& cacheFolder);
/// Where another program's pyramid of the image would be.
std::string foreignPyramidPath(const std::string& imagePath);

enum class PyramidState { kMissing, kOurs, kForeign, kStale };

/// The pyramid to use for an image: ours (its stamp and form fit), or another program's (right size
/// and bands, not older than the image). `mark` is that of ours. `stale`: one of ours, or one in
/// its place, does not fit the image any more or is damaged.
struct FoundPyramid {
  PyramidState state = PyramidState::kMissing;
  std::string path;
  PyramidMark mark;
  bool stale = false;
};
FoundPyramid findPyramid(const PyramidSubject& subject, const PyramidPlaces& places);

}  // namespace tarn::raster
