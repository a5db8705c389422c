// New bytes for a file, on the disk but not in its place yet.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/file.h"
#include "base/result.h"

namespace tarn {

/// Between finish() and commit() both the old file and the new bytes are whole on the disk, so that
/// what else must succeed before the old one goes can be done. Without commit() nothing has changed
/// and nothing is left. Symbolic links are followed to the file that they name, and a file keeps
/// its mode and, where allowed, its owner.
class StagedFile {
 public:
  StagedFile() = default;
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  /// Opens a file beside the one that `path` means, without a name where the system has such files.
  /// Once an object.
  Status begin(const std::string& path);
  /// Appends; small pieces are gathered before they are written.
  Status add(std::string_view bytes);
  /// What was added is on the disk then.
  Status finish();
  /// All three.
  Status write(const std::string& path, std::string_view bytes);
  /// Puts the bytes in the file's place and syncs the folder.
  Status commit();
  /// True once the bytes are in their place, also when the folder could not be synced then.
  bool isInPlace() const { return isInPlace_; }

 private:
  Status flush();

  OutputFile file_;
  std::string gathered_;
  std::uint64_t written_ = 0;
  std::string target_;
  std::string temporary_;  ///< its name until it is in its place
  bool isNamed_ = false;
  bool isInPlace_ = false;
};

/// The name that a file has beside `path` until it takes its place: as long as names may be.
std::string temporaryNameOf(const std::string& path);

/// Removes what processes that were killed while they replaced `path` have left beside it.
void removeLeftovers(const std::string& path);

}  // namespace tarn
