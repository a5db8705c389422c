#include "base/filelock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/file.h"

namespace tarn {

FileLock::~FileLock() {
  unlock();
}

Status FileLock::tryLock(const std::string& path) {
  unlock();
  const int handle = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  handle_ = handle;
  if (handle < 0) return Status::error(path + ": cannot create: " + lastSystemError());
  if (::flock(handle, LOCK_EX | LOCK_NB) != 0) {
    const bool taken = errno == EWOULDBLOCK;
    const std::string reason = lastSystemError();
    unlock();
    return Status::error(path +
                         (taken ? ": is locked by another program" : ": cannot lock: " + reason));
  }
  // Between opening and locking somebody else may have finished and removed the file.
  struct stat opened {
  }, named{};
  if (::fstat(handle, &opened) == 0 && ::stat(path.c_str(), &named) == 0 &&
      opened.st_ino == named.st_ino && opened.st_dev == named.st_dev)
    return Status::ok();
  unlock();
  return Status::error(path + ": was removed meanwhile");
}

void FileLock::unlock() {
  if (handle_ != -1) ::close(static_cast<int>(std::exchange(handle_, -1)));
}

}  // namespace tarn
