#include <unistd.h>

#include <cstdlib>

#include "base/program.h"

namespace tarn {

std::vector<std::string> programArguments(int count, char** words) {
  return count > 1 ? std::vector<std::string>(words + 1, words + count)
                   : std::vector<std::string>();
}

std::string environmentValue(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

void prepareStandardStreams() {}

bool standardOutputIsTerminal() {
  return ::isatty(STDOUT_FILENO) == 1;
}

std::string systemFontFolder() {
  return {};
}

bool hasDisplay() {
  return !environmentValue("DISPLAY").empty() || !environmentValue("WAYLAND_DISPLAY").empty();
}

void closeOwnConsole() {}

}  // namespace tarn
