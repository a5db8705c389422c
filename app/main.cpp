#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "app/options.h"
#include "app/session.h"
#include "base/file.h"

namespace {

bool hasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != 0) return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  tarn::makeWriteFailuresErrors();
  const auto options = tarn::app::parseOptions(std::vector<std::string>(argv + 1, argv + argc));
  if (!options) {
    std::cerr << "cadhost: " << options.message() << "\n";
    return 2;
  }
  if (options.value().help) {
    std::cout << tarn::app::helpText();
    return 0;
  }
  if (options.value().version) {
    std::cout << "cadhost " << TARN_VERSION << "\n";
    return 0;
  }
#ifdef TARN_HAS_WINDOW
  if (!options.value().headless && hasDisplay()) {
    return tarn::app::runWindow(options.value(), argc, argv);
  }
#else
  if (!options.value().headless && hasDisplay()) {
    std::cerr << "cadhost: this build has no window; running without.\n";
  }
#endif
  return tarn::app::runHeadless(options.value(), argc, argv);
}
