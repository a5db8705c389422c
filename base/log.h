// The diagnostic log: one file a process in a folder, or nothing until a folder was given.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// Starts the log in `folder` (made when missing). Without a folder, or when it cannot be written,
/// messages are dropped. May be called again; the later folder holds.
void startLog(const std::string& folder);

/// Adds one line with the time. Safe from any thread.
void logLine(std::string_view text);

}  // namespace tarn
