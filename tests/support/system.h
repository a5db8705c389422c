// What tests ask of the operating system; each may not be there on one of them.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::test {

/// Makes a symbolic link; false where that is not to be had.
bool makeLink(const std::string& target, const std::string& link);

/// True where programs that nobody here wrote can judge what ours leave (poppler, GDAL's).
bool hasJudges();

/// Stands for a full disk: no file may become larger than this, until the object is gone.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(uint64_t bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  /// False where the system knows no such limit.
  bool holds() const { return holds_; }

 private:
  uint64_t before_ = 0;
  bool holds_ = false;
};

}  // namespace tarn::test
