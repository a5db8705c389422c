#include "base/file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "base/path.h"
#include "base/systemfile.h"

namespace tarn {
namespace {

using system::failure;

int number(system::Handle handle) {
  return static_cast<int>(handle);
}

Status syncFolder(const std::string& folder) {
  const int handle =
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return failure(folder, "cannot open the folder");
  const int synced = ::fsync(handle);
  const int error = errno;
  ::close(handle);
  errno = error;
  // Some network file systems cannot sync a folder; their rename is durable by itself.
  if (synced != 0 && errno != EINVAL && errno != ENOTSUP) return failure(folder, "cannot sync");
  return Status::ok();
}

}  // namespace

namespace system {

// Without waiting: what is a file may have become a pipe meanwhile, and some of the system's own
// files block their readers.
Handle openForReading(const std::string& path) {
  if (fileKind(path) == FileKind::kOther) {
    errno = EINVAL;
    return kNoHandle;
  }
  const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  struct stat info {};
  if (handle < 0 || (::fstat(handle, &info) == 0 && S_ISREG(info.st_mode))) return handle;
  ::close(handle);
  errno = EINVAL;
  return kNoHandle;
}

Handle openForWriting(const std::string& path, bool create) {
  return ::open(path.c_str(), O_RDWR | O_CLOEXEC | (create ? O_CREAT | O_TRUNC : 0), 0666);
}

Handle openToSync(const std::string& path) {
  return openForReading(path);
}

bool closeHandle(Handle handle) {
  return ::close(number(handle)) == 0;
}

std::ptrdiff_t readSome(Handle handle, uint64_t offset, void* out, size_t size) {
  for (;;) {
    const ssize_t count = ::pread(number(handle), out, size, static_cast<off_t>(offset));
    if (count >= 0 || errno != EINTR) return count;
  }
}

std::ptrdiff_t writeSome(Handle handle, uint64_t offset, const void* data, size_t size) {
  for (;;) {
    const ssize_t count = ::pwrite(number(handle), data, size, static_cast<off_t>(offset));
    if (count >= 0 || errno != EINTR) return count;
  }
}

bool syncHandle(Handle handle) {
  return ::fsync(number(handle)) == 0;
}

bool makeFolder(const std::string& folder) {
  return ::mkdir(folder.c_str(), 0777) == 0 || errno == EEXIST;
}

bool removeName(const std::string& path) {
  if (isFolderItself(path)) return ::rmdir(path.c_str()) == 0;
  return ::unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

bool linkName(const std::string& path, const std::string& name) {
  return ::link(path.c_str(), name.c_str()) == 0;
}

}  // namespace system

std::string lastSystemError() {
  return std::strerror(errno);
}

bool isFolderItself(const std::string& path) {
  struct stat info = {};
  return ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

FileKind fileKind(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return FileKind::kMissing;
  if (S_ISREG(info.st_mode)) return FileKind::kRegular;
  return S_ISDIR(info.st_mode) ? FileKind::kFolder : FileKind::kOther;
}

bool isSameFile(const std::string& path, const std::string& other) {
  struct stat a {
  }, b{};
  return ::stat(path.c_str(), &a) == 0 && ::stat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

FileTimes fileTimes(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return {};
  return {static_cast<uint64_t>(info.st_size),
          static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec};
}

bool folderIsWritable(const std::string& folder) {
  return ::access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0;
}

bool fileIsWritable(const std::string& path) {
  struct stat info {};
  // The superuser may write to everything, but a mark against writing is meant.
  const bool marked = ::stat(path.c_str(), &info) == 0 && (info.st_mode & 0222) == 0;
  return !marked && ::access(path.c_str(), W_OK) == 0;
}

std::vector<std::string> listFolder(const std::string& folder) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(folder.empty() ? "." : folder.c_str());
  if (!dir) return names;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
}

Result<std::string> makeTemporaryFolder(const std::string& folder, const std::string& prefix) {
  std::string pattern = joinPath(folder, prefix + "XXXXXX");
  if (!::mkdtemp(pattern.data())) return failure(folder, "cannot make a temporary folder");
  return pattern;
}

Status replaceFile(const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) return failure(to, "cannot rename into place");
  return syncFolder(folderOf(to).empty() && !to.empty() && to[0] == '/' ? "/" : folderOf(to));
}

Result<std::string> linkTarget(const std::string& path) {
  constexpr int kMostLinks = 40;
  std::string at = path;
  for (int i = 0; i < kMostLinks; ++i) {
    char buffer[PATH_MAX];
    const ssize_t length = ::readlink(at.c_str(), buffer, sizeof buffer);
    if (length <= 0) return at;
    const std::string to(buffer, static_cast<size_t>(length));
    at = to.front() == '/' ? to : joinPath(folderOf(at), to);
  }
  return Status::error(path + ": the symbolic links lead to no file");
}

bool isAbsolutePath(std::string_view path) {
  return !path.empty() && path[0] == '/';
}

std::string absolutePath(const std::string& path) {
  if (isAbsolutePath(path)) return pathBelow("/", path);
  char buffer[PATH_MAX];
  if (!::getcwd(buffer, sizeof buffer)) return path;
  return pathBelow(buffer, path);
}

Status OutputFile::createUnnamed(const std::string& folder, const std::string& path) {
  path_ = path;
#ifdef O_TMPFILE
  // The name is given through this folder in the end.
  if (::access("/proc/self/fd", X_OK) == 0) {
    handle_ = ::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
  }
#endif
  return handle_ >= 0 ? Status::ok() : failure(path, "cannot create");
}

Status OutputFile::takeRightsOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return Status::ok();
  // Only the superuser may give a file away, and members of a group to their group.
  if (::fchown(number(handle_), info.st_uid, info.st_gid) != 0) {
    static_cast<void>(::fchown(number(handle_), static_cast<uid_t>(-1), info.st_gid) == 0);
  }
  return ::fchmod(number(handle_), info.st_mode & 0777) == 0
             ? Status::ok()
             : failure(path_, "cannot set the mode");
}

Status OutputFile::nameIt(const std::string& path) {
  ::unlink(path.c_str());
  const std::string self = "/proc/self/fd/" + std::to_string(handle_);
  if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0)
    return failure(path_, "cannot name the file");
  return close();
}

}  // namespace tarn
