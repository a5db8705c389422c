// Files of the operating system, behind small functions. Paths are UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace tarn {

enum class FileKind { kMissing, kRegular, kFolder, kOther };

/// What stands at `path`, symbolic links followed.
FileKind fileKind(const std::string& path);

/// True when both paths lead to one file that is there.
bool isSameFile(const std::string& path, const std::string& other);

/// True for a folder itself, not for a link to one.
bool isFolderItself(const std::string& path);

/// Size in bytes and time of last change in nanoseconds since 1970; zero when it cannot be read.
struct FileTimes {
  uint64_t size = 0;
  int64_t modifiedNs = 0;
};
FileTimes fileTimes(const std::string& path);

/// True when this process may write into the folder.
bool folderIsWritable(const std::string& folder);

/// True when somebody may write to the file and this process is one who may.
bool fileIsWritable(const std::string& path);

/// Makes a folder and those above it. Fine when it is there already.
Status makeFolders(const std::string& folder);

/// Names (not paths) in a folder, sorted; empty when it cannot be read.
std::vector<std::string> listFolder(const std::string& folder);

/// Removes a file, or a folder with all that is in it. Links are removed, never followed. Fine when
/// nothing is there.
Status removeAll(const std::string& path);

/// A new empty folder inside `folder` whose name begins with `prefix`, only for this user.
Result<std::string> makeTemporaryFolder(const std::string& folder, const std::string& prefix);

/// Reads a whole regular file; refused above `limit` bytes.
Result<std::string> readFile(const std::string& path, uint64_t limit);

/// Waits until what was written to the file is on the disk.
Status syncFile(const std::string& path);

/// Moves a finished file (already synced) into its place and syncs the folder: after a crash there
/// is the old file or the new one, whole. Both must be on one disk.
Status replaceFile(const std::string& from, const std::string& to);

/// The file that a path means in the end: symbolic links as its last part followed, also to a file
/// that is missing; links among the folders stay. An error for links that lead nowhere.
Result<std::string> linkTarget(const std::string& path);

/// True while a process of this number runs on this machine.
bool processLives(int process);

/// A second name for a file on the same disk; what had that name before goes. On failure it stays.
Status giveSecondName(const std::string& path, const std::string& second);

/// Writes, syncs and renames through a file beside `path` (see StagedFile). On failure the old file
/// is untouched and nothing is left behind.
Status writeFileAtomically(const std::string& path, std::string_view bytes);

/// True for a path that needs no working folder.
bool isAbsolutePath(std::string_view path);

/// Absolute form of a path, relative to the working folder; does not need to exist.
std::string absolutePath(const std::string& path);

/// From now on a write to a closed pipe or beyond a size limit fails with an error instead of
/// ending the process. For programs, once at their start.
void makeWriteFailuresErrors();

/// The reason of the last failed system call, for messages.
std::string lastSystemError();

/// Bytes that several threads may read at any offset at once.
class RandomBytes {
 public:
  virtual ~RandomBytes() = default;

  /// True when all `size` bytes at `offset` were read.
  virtual bool readAt(uint64_t offset, void* out, size_t size) const = 0;
};

/// A file opened for reading. Never mapped: a file that is cut short meanwhile gives a short read,
/// not a signal.
class RandomFile final : public RandomBytes {
 public:
  RandomFile() = default;
  ~RandomFile() override;
  RandomFile(RandomFile&& other) noexcept;
  RandomFile& operator=(RandomFile&& other) noexcept;
  RandomFile(const RandomFile&) = delete;
  RandomFile& operator=(const RandomFile&) = delete;

  /// Regular files only.
  Status open(const std::string& path);
  void close();
  bool isOpen() const { return handle_ != -1; }

  bool readAt(uint64_t offset, void* out, size_t size) const override;

 private:
  std::intptr_t handle_ = -1;
};

/// A file written from start to end or at known offsets by several threads at once; the caller
/// checks every status.
class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Creates or empties the file. Messages name `shown` when it is given.
  Status create(const std::string& path, const std::string& shown = {});
  /// A file in the folder that has no name until nameIt(): nothing of it is left when the process
  /// is killed. Fails where the system cannot do that. `path` is for messages.
  Status createUnnamed(const std::string& folder, const std::string& path);
  /// Takes the mode of another file, and its owner where that is allowed. Fine when it is missing.
  Status takeRightsOf(const std::string& path);
  /// Opens a file that is there, to write into it.
  Status openExisting(const std::string& path);
  Status writeAt(uint64_t offset, const void* data, size_t size);
  Status sync();
  /// Syncs and closes.
  Status finish();
  /// Gives a file without a name this one and closes it.
  Status nameIt(const std::string& path);

 private:
  Status close();

  std::string path_;
  std::intptr_t handle_ = -1;
};

}  // namespace tarn
