#include "base/filelock.h"

#include <windows.h>

#include <utility>

#include "base/file.h"
#include "base/windows/widepath.h"

namespace tarn {

FileLock::~FileLock() {
  unlock();
}

Status FileLock::tryLock(const std::string& path) {
  unlock();
  const HANDLE handle = ::CreateFileW(system::widePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  if (handle == INVALID_HANDLE_VALUE)
    return Status::error(path + ": cannot create: " + lastSystemError());
  // Others may not read what is locked, so it is a byte behind everything.
  OVERLAPPED last{};
  last.Offset = last.OffsetHigh = 0x7FFFFFFF;
  if (::LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &last) ==
      0) {
    const DWORD error = ::GetLastError();
    const bool taken = error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING;
    const std::string reason = lastSystemError();
    unlock();
    return Status::error(path +
                         (taken ? ": is locked by another program" : ": cannot lock: " + reason));
  }
  // Between opening and locking somebody else may have finished and removed the file.
  FILE_STANDARD_INFO info{};
  if (::GetFileInformationByHandleEx(handle, FileStandardInfo, &info, sizeof info) == 0 ||
      (info.DeletePending == FALSE && info.NumberOfLinks > 0))
    return Status::ok();
  unlock();
  return Status::error(path + ": was removed meanwhile");
}

void FileLock::unlock() {
  if (handle_ != -1) ::CloseHandle(reinterpret_cast<HANDLE>(std::exchange(handle_, -1)));
}

}  // namespace tarn
