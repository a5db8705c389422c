// Forms as questions of the command line.
#pragma once

#include "tarnform.h"

namespace tarn::host {

class HostApp;

/// Asks one field after the other; Enter keeps what holds. Answers that do not do are asked again.
/// False when the input is cancelled or ends.
bool askFormOnCommandLine(HostApp& app, TarnForm& form);

}  // namespace tarn::host
