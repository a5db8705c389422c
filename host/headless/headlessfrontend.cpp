#include "host/headless/headlessfrontend.h"

#include <algorithm>
#include <csignal>
#include <istream>
#include <memory>
#include <ostream>
#include <utility>

#include "base/text.h"
#include "host/editor/hostapp.h"

namespace tarn::host {

namespace {

volatile std::sig_atomic_t cancelRequested = 0;

extern "C" void onInterrupt(int signal) {
  // A second one ends the program in the usual way.
  if (cancelRequested != 0) std::signal(signal, SIG_DFL);
  if (cancelRequested != 0) std::raise(signal);
  cancelRequested = 1;
}

}  // namespace

HeadlessFrontEnd::LineSource linesOf(std::istream& stream) {
  auto first = std::make_shared<bool>(true);
  return [&stream, first]() -> std::optional<std::string> {
    std::string line;
    if (!std::getline(stream, line)) return std::nullopt;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (std::exchange(*first, false) && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
    return line;
  };
}

HeadlessFrontEnd::HeadlessFrontEnd(std::ostream& transcript, bool showProgress)
    : out_(transcript), showProgress_(showProgress) {}

void HeadlessFrontEnd::addLines(LineSource source) {
  sources_.push_back(std::move(source));
}

void HeadlessFrontEnd::addLine(std::string line) {
  auto left = std::make_shared<std::optional<std::string>>(std::move(line));
  addLines([left] { return std::exchange(*left, std::nullopt); });
}

std::optional<std::string> HeadlessFrontEnd::nextLine() {
  while (!sources_.empty()) {
    if (auto line = sources_.front()()) return line;
    sources_.pop_front();
  }
  return std::nullopt;
}

bool HeadlessFrontEnd::run(HostApp& app) {
  const int before = app.failedCommands();
  app.runQueued();
  while (!app.quitRequested()) {
    const auto line = nextLine();
    if (!line) break;
    // Deliberate: a line that begins with ';' is a remark in a script, as everywhere in this trade.
    const std::string_view text = trim(std::string_view(*line));
    if (text.empty() || text.front() == ';') continue;
    print("\nCommand: " + *line + "\n");
    app.runLine(*line);
  }
  if (endedInside_) print("\nThe input ended while a command waited for more.\n");
  out_.flush();
  return app.failedCommands() == before && !endedInside_;
}

void HeadlessFrontEnd::requestCancel() {
  cancelRequested = 1;
}

void HeadlessFrontEnd::installSignals() {
  std::signal(SIGINT, onInterrupt);
}

void HeadlessFrontEnd::print(const std::string& text) {
  clearProgress();
  for (const char c : text) {
    if (c == '\r') continue;
    // A break at the start of a line belongs to the line before.
    if (c == '\n' && atLineStart_) continue;
    out_.put(c);
    atLineStart_ = c == '\n';
  }
  out_.flush();
}

std::optional<std::string> HeadlessFrontEnd::readLine(const std::string& prompt, InputKind) {
  if (cancelRequested != 0) return std::nullopt;
  auto line = nextLine();
  if (!line) {
    endedInside_ = true;
    print(prompt + "\n");
    return std::nullopt;
  }
  print(prompt + *line + "\n");
  return line;
}

void HeadlessFrontEnd::clearProgress() {
  if (shownPercent_ < 0 || !showProgress_) return;
  out_ << "\r\x1b[K";
  shownPercent_ = -1;
}

void HeadlessFrontEnd::progressBegin(const std::string& label, int minimum, int maximum) {
  progressEnd();
  label_ = label;
  minimum_ = minimum;
  maximum_ = maximum;
}

void HeadlessFrontEnd::progressMove(int position) {
  if (!showProgress_ || maximum_ <= minimum_) return;
  const long long done = static_cast<long long>(position) - minimum_;
  const long long range = static_cast<long long>(maximum_) - minimum_;
  const int percent = static_cast<int>(std::min(100LL, std::max(0LL, done * 100 / range)));
  if (percent == shownPercent_) return;
  if (!atLineStart_) print("\n");
  shownPercent_ = percent;
  out_ << "\r\x1b[K" << label_ << " " << percent << " %";
  out_.flush();
}

void HeadlessFrontEnd::progressEnd() {
  clearProgress();
  if (!label_.empty() && !cancelWanted()) print("\n" + label_ + " done.\n");
  label_.clear();
}

bool HeadlessFrontEnd::cancelWanted() {
  return cancelRequested != 0;
}

void HeadlessFrontEnd::cancelHandled() {
  cancelRequested = 0;
}

}  // namespace tarn::host
