// Where a file is made before it stands in its place.
#pragma once

#include <string>

#include "base/filelock.h"
#include "base/result.h"

namespace tarn::raster {

/// The hidden folder in which the file `target` is made, beside the place where it will stand. One
/// a target, so that two makers meet and leftovers are found without searching.
std::string buildFolderPath(const std::string& target);
/// The lock file in it; a living maker holds its lock.
std::string buildLockPath(const std::string& buildFolder);

/// Removes what a maker of the file that died has left. A living one is left alone.
void removeDeadBuild(const std::string& target);

/// The build folder of one file: locked while it lives, gone afterwards.
class BuildFolder {
 public:
  BuildFolder() = default;
  ~BuildFolder();
  BuildFolder(const BuildFolder&) = delete;
  BuildFolder& operator=(const BuildFolder&) = delete;

  /// Fails when the folder cannot be written or somebody else makes the same file.
  Status make(const std::string& target);
  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const;

 private:
  std::string path_;
  FileLock lock_;
};

}  // namespace tarn::raster
