// The lines that the command line of the program asks to run.
#pragma once

#include <vector>

#include "app/options.h"
#include "base/result.h"
#include "host/headless/headlessfrontend.h"

namespace tarn::app {

using LineSource = host::HeadlessFrontEnd::LineSource;

/// One source for each --command and --script, in their order; a source owns its file. An error
/// names the script that cannot be read.
Result<std::vector<LineSource>> startInputs(const Options& options);

}  // namespace tarn::app
