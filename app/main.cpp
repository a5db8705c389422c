#include <iostream>
#include <string>

#include "app/options.h"
#include "app/session.h"
#include "base/file.h"
#include "base/program.h"

int main(int argc, char** argv) {
  tarn::makeWriteFailuresErrors();
  tarn::prepareStandardStreams();
  const auto options = tarn::app::parseOptions(tarn::programArguments(argc, argv));
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
  if (!options.value().headless && tarn::hasDisplay()) {
    return tarn::app::runWindow(options.value(), argc, argv);
  }
#else
  if (!options.value().headless && tarn::hasDisplay()) {
    std::cerr << "cadhost: this build has no window; running without.\n";
  }
#endif
  return tarn::app::runHeadless(options.value(), argc, argv);
}
