#include "base/log.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "base/file.h"
#include "base/path.h"
#include "base/process.h"

namespace tarn {
namespace {

struct Log {
  std::mutex mutex;
  std::ofstream file;
};

Log& log() {
  static Log instance;
  return instance;
}

}  // namespace

void startLog(const std::string& folder) {
  const std::lock_guard<std::mutex> lock(log().mutex);
  log().file.close();
  if (!makeFolders(folder)) return;
  log().file.clear();
  log().file.open(std::filesystem::u8path(joinPath(folder, "tarn.log")),
                  std::ios::app | std::ios::binary);
}

void logLine(std::string_view text) {
  const std::lock_guard<std::mutex> lock(log().mutex);
  if (!log().file.is_open()) return;
  const std::time_t now = std::time(nullptr);
  const std::tm parts = localTime(now);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S ", &parts);
  log().file << stamp << text << '\n' << std::flush;
}

}  // namespace tarn
