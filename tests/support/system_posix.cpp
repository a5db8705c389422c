#include <sys/resource.h>
#include <unistd.h>

#include "base/file.h"
#include "tests/support/system.h"

namespace tarn::test {
namespace {

bool setLimit(uint64_t bytes) {
  rlimit limit{};
  if (getrlimit(RLIMIT_FSIZE, &limit) != 0) return false;
  limit.rlim_cur = static_cast<rlim_t>(bytes);
  return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

}  // namespace

bool makeLink(const std::string& target, const std::string& link) {
  return ::symlink(target.c_str(), link.c_str()) == 0;
}

bool hasJudges() {
  return true;
}

FileSizeLimit::FileSizeLimit(uint64_t bytes) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  before_ = limit.rlim_cur;
  makeWriteFailuresErrors();
  holds_ = setLimit(bytes);
}

FileSizeLimit::~FileSizeLimit() {
  if (holds_) setLimit(before_);
}

}  // namespace tarn::test
