// A lock on a file that ends with the process that holds it, however that ends.
#pragma once

#include <cstdint>
#include <string>

#include "base/result.h"

namespace tarn {

class FileLock {
 public:
  FileLock() = default;
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  /// Makes the file when it is missing and takes the lock; fails at once when somebody else (or
  /// another FileLock of this process) holds it, or when the file was removed meanwhile.
  Status tryLock(const std::string& path);
  void unlock();

 private:
  std::intptr_t handle_ = -1;
};

}  // namespace tarn
