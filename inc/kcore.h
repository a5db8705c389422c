// The framework core's program-wide state.
#pragma once

#include "inc/kelapi.h"

class CallBackProgressBar;

namespace kel {

class KEL_API Core {
 public:
  /// Installs the progress callback of the long operation about to run, replacing any other; null
  /// removes it. The caller keeps the object alive until then.
  static void setProgressBar(CallBackProgressBar* progress);
  /// The installed callback, or null. For components, on the thread that runs the operation.
  static CallBackProgressBar* progressBar();

  /// Starts the diagnostic log of the framework in `folder` (UTF-8); lines before it are dropped.
  static void startLog(const char* folder);
  /// Adds one line to the diagnostic log. Safe from any thread.
  static void log(const char* text);

  /// Replaces what kelAssert does (tests and hosts); null restores the report to the log.
  using AssertHandler = void (*)(const char* message, const char* sourceFile, int line);
  static void setAssertHandler(AssertHandler handler);
};

}  // namespace kel
