#include "inc/kcore.h"

#include <atomic>
#include <string>

#include "base/log.h"
#include "inc/kobject.h"

namespace kel {
namespace {

std::atomic<CallBackProgressBar*> g_progressBar{nullptr};
std::atomic<Core::AssertHandler> g_assertHandler{nullptr};

}  // namespace

void Core::setProgressBar(CallBackProgressBar* progress) {
  g_progressBar = progress;
}

CallBackProgressBar* Core::progressBar() {
  return g_progressBar;
}

void Core::startLog(const char* folder) {
  tarn::startLog(folder);
}

void Core::log(const char* text) {
  tarn::logLine(text);
}

void Core::setAssertHandler(AssertHandler handler) {
  g_assertHandler = handler;
}

void kelAssert(const char* message, const char* sourceFile, int line) {
  if (const Core::AssertHandler handler = g_assertHandler) {
    handler(message, sourceFile, line);
    return;
  }
  tarn::logLine("assertion: no " + std::string(message) + " (" + sourceFile + ":" +
                std::to_string(line) + ")");
}

}  // namespace kel
