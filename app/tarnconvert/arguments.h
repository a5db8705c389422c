// The command line of tarnconvert.
#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "components/convert/options.h"

namespace tarn::convertapp {

struct Arguments {
  convert::Options options;
  /// Files, folders and patterns as given.
  std::vector<std::string> names;
  bool listOnInput = false;
  /// The part, 1 to `parts`, that this process converts.
  unsigned part = 1;
  unsigned parts = 1;
  /// The names are folders whose images are to be listed for a server.
  bool catalogue = false;
  bool help = false;
};

/// Fails with a sentence about what is wrong.
Result<Arguments> parseArguments(const std::vector<std::string>& words);

extern const char* const kUsage;

}  // namespace tarn::convertapp
