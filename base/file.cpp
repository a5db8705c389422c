#include "base/file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/path.h"
#include "base/stagedfile.h"

namespace tarn {
namespace {

Status failure(const std::string& path, const char* what) {
  return Status::error(path + ": " + what + ": " + lastSystemError());
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

/// Opens a regular file for reading; -1 with errno for everything else. Without waiting: what is a
/// file may have become a pipe meanwhile, and some of the system's own files block their readers.
int openRegular(const std::string& path) {
  if (fileKind(path) == FileKind::kOther) {
    errno = EINVAL;
    return -1;
  }
  const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  struct stat info {};
  if (handle < 0 || (::fstat(handle, &info) == 0 && S_ISREG(info.st_mode))) return handle;
  ::close(handle);
  errno = EINVAL;
  return -1;
}

Status openFailure(const std::string& path) {
  const int error = errno;
  const FileKind kind = fileKind(path);
  if (kind == FileKind::kOther || kind == FileKind::kFolder)
    return Status::error(path + ": is not a regular file");
  errno = error;
  return failure(path, "cannot open");
}

}  // namespace

void makeWriteFailuresErrors() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

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

Status makeFolders(const std::string& folder) {
  if (folder.empty() || fileKind(folder) == FileKind::kFolder) return Status::ok();
  if (Status above = makeFolders(folderOf(folder)); !above) return above;
  if (::mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST)
    return failure(folder, "cannot make the folder");
  return Status::ok();
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

Status removeAll(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return Status::ok();
  if (S_ISDIR(info.st_mode)) {
    for (const std::string& name : listFolder(path)) {
      if (Status inner = removeAll(joinPath(path, name)); !inner) return inner;
    }
    return ::rmdir(path.c_str()) == 0 ? Status::ok() : failure(path, "cannot remove");
  }
  return ::unlink(path.c_str()) == 0 ? Status::ok() : failure(path, "cannot remove");
}

Result<std::string> makeTemporaryFolder(const std::string& folder, const std::string& prefix) {
  std::string pattern = joinPath(folder, prefix + "XXXXXX");
  if (!::mkdtemp(pattern.data())) return failure(folder, "cannot make a temporary folder");
  return pattern;
}

Result<std::string> readFile(const std::string& path, uint64_t limit) {
  const int handle = openRegular(path);
  if (handle < 0) return openFailure(path);
  std::string bytes;
  struct stat info {};
  if (::fstat(handle, &info) == 0 && info.st_size > 0) {
    bytes.reserve(std::min(static_cast<uint64_t>(info.st_size), limit) + 1);
  }
  char buffer[65536];
  ssize_t count = 0;
  while ((count = ::read(handle, buffer, sizeof buffer)) != 0) {
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    bytes.append(buffer, static_cast<size_t>(count));
    if (bytes.size() > limit) {
      ::close(handle);
      return Status::error(path + ": larger than " + std::to_string(limit) + " bytes");
    }
  }
  const int error = errno;
  ::close(handle);
  errno = error;
  if (count < 0) return failure(path, "cannot read");
  return bytes;
}

Status syncFile(const std::string& path) {
  const int handle = openRegular(path);
  if (handle < 0) return openFailure(path);
  const int synced = ::fsync(handle);
  const int error = errno;
  ::close(handle);
  errno = error;
  return synced == 0 ? Status::ok() : failure(path, "cannot sync");
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

bool processLives(int process) {
  return ::kill(process, 0) == 0 || errno != ESRCH;
}

Status giveSecondName(const std::string& path, const std::string& second) {
  const std::string temporary = second + ".tmp" + std::to_string(::getpid());
  ::unlink(temporary.c_str());
  if (::link(path.c_str(), temporary.c_str()) != 0) return failure(second, "cannot link");
  Status status = replaceFile(temporary, second);
  // Also there when both names were those of one file before.
  ::unlink(temporary.c_str());
  return status;
}

Status writeFileAtomically(const std::string& path, std::string_view bytes) {
  StagedFile file;
  const Status status = file.write(path, bytes);
  return status ? file.commit() : status;
}

std::string absolutePath(const std::string& path) {
  if (!path.empty() && path[0] == '/') return path;
  char buffer[PATH_MAX];
  if (!::getcwd(buffer, sizeof buffer)) return path;
  return joinPath(buffer, path);
}

RandomFile::~RandomFile() {
  close();
}

RandomFile::RandomFile(RandomFile&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}

RandomFile& RandomFile::operator=(RandomFile&& other) noexcept {
  if (this != &other) {
    close();
    handle_ = std::exchange(other.handle_, -1);
  }
  return *this;
}

Status RandomFile::open(const std::string& path) {
  close();
  handle_ = openRegular(path);
  return handle_ >= 0 ? Status::ok() : openFailure(path);
}

void RandomFile::close() {
  if (handle_ >= 0) ::close(handle_);
  handle_ = -1;
}

bool RandomFile::readAt(uint64_t offset, void* out, size_t size) const {
  auto* at = static_cast<char*>(out);
  while (size > 0) {
    const ssize_t count = ::pread(handle_, at, size, static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    at += count;
    offset += static_cast<uint64_t>(count);
    size -= static_cast<size_t>(count);
  }
  return true;
}

OutputFile::~OutputFile() {
  if (handle_ >= 0) ::close(handle_);
}

Status OutputFile::create(const std::string& path, const std::string& shown) {
  path_ = shown.empty() ? path : shown;
  handle_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return handle_ >= 0 ? Status::ok() : failure(path_, "cannot create");
}

Status OutputFile::openExisting(const std::string& path) {
  path_ = path;
  handle_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  return handle_ >= 0 ? Status::ok() : failure(path, "cannot open");
}

Status OutputFile::writeAt(uint64_t offset, const void* data, size_t size) {
  const auto* at = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = ::pwrite(handle_, at, size, static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return failure(path_, "cannot write");
    at += count;
    offset += static_cast<uint64_t>(count);
    size -= static_cast<size_t>(count);
  }
  return Status::ok();
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
  if (::fchown(handle_, info.st_uid, info.st_gid) != 0) {
    static_cast<void>(::fchown(handle_, static_cast<uid_t>(-1), info.st_gid) == 0);
  }
  return ::fchmod(handle_, info.st_mode & 0777) == 0 ? Status::ok()
                                                     : failure(path_, "cannot set the mode");
}

Status OutputFile::sync() {
  return ::fsync(handle_) == 0 ? Status::ok() : failure(path_, "cannot sync");
}

Status OutputFile::close() {
  return ::close(std::exchange(handle_, -1)) == 0 ? Status::ok() : failure(path_, "cannot close");
}

Status OutputFile::finish() {
  const Status status = sync();
  return status ? close() : status;
}

Status OutputFile::nameIt(const std::string& path) {
  ::unlink(path.c_str());
  const std::string self = "/proc/self/fd/" + std::to_string(handle_);
  if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0)
    return failure(path_, "cannot name the file");
  return close();
}

}  // namespace tarn
