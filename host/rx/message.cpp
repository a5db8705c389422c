#include "host/rx/message.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "base/text.h"
#include "rxregsvc.h"

namespace tarn::host {

namespace {

MessageSink& currentSink() {
  static MessageSink sink;
  return sink;
}

}  // namespace

void setMessageSink(MessageSink sink) {
  currentSink() = std::move(sink);
}

void printMessage(std::wstring_view text) {
  if (currentSink()) {
    currentSink()(text);
    return;
  }
  const std::string utf8 = toUtf8(text);
  std::fwrite(utf8.data(), 1, utf8.size(), stderr);
}

}  // namespace tarn::host

void acrx_abort(const ACHAR* text) {
  // Straight to the error stream: a command line may no longer work now.
  const std::string utf8 = tarn::toUtf8(text) + "\n";
  std::fwrite(utf8.data(), 1, utf8.size(), stderr);
  std::fflush(stderr);
  std::abort();
}

void acrxAbort(const ACHAR* text) {
  acrx_abort(text);
}
