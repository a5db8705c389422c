#include "base/process.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "base/file.h"

namespace tarn {

int processNumber() {
  return ::getpid();
}

bool processLives(int process) {
  return ::kill(process, 0) == 0 || errno != ESRCH;
}

std::tm localTime(std::time_t moment) {
  std::tm parts{};
  ::localtime_r(&moment, &parts);
  return parts;
}

void makeWriteFailuresErrors() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace tarn
