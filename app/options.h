// The command line of cadhost.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/result.h"

namespace tarn::app {

struct StartView {
  double centerX = 0;
  double centerY = 0;
  double height = 0;
  double twistDegrees = 0;
};

/// A piece of input, in the order given.
struct StartInput {
  enum class Kind { kCommand, kScript } kind = Kind::kCommand;
  std::string text;  ///< the line, or the script's path ("-" is the standard input)
};

struct Options {
  bool help = false;
  bool version = false;
  bool headless = false;
  bool statistics = false;
  bool guide = false;  ///< the first steps of a new user
  int width = 1280;
  int height = 720;
  std::optional<StartView> view;
  std::vector<StartInput> inputs;
  std::string picture;
  std::string profile;
  std::string log;
  std::vector<std::string> drawings;
  std::vector<std::string> images;
  std::string save;
};

/// Reads the arguments that follow the program's name. The message is one sentence for the user.
Result<Options> parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string helpText();

}  // namespace tarn::app
