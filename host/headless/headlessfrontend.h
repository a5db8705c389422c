// The front end of scripts: inputs come from lines of text, everything shown goes to a transcript.
#pragma once

#include <deque>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

#include "adesk.h"
#include "host/editor/frontend.h"

namespace tarn::host {

class HostApp;

class ACADHOST_EXPORT HeadlessFrontEnd : public FrontEnd {
 public:
  /// Where the next line of the script comes from; nothing at its end.
  using LineSource = std::function<std::optional<std::string>()>;

  /// `transcript` must outlive the object. With `showProgress` the progress is drawn over one line
  /// (for terminals); else only the end of an operation is noted.
  HeadlessFrontEnd(std::ostream& transcript, bool showProgress);

  /// Adds a source, read after those already given.
  void addLines(LineSource source);
  /// Adds lines known beforehand, each an input line.
  void addLine(std::string line);

  /// Runs commands until the lines end or QUIT. False when a command failed, or when the lines
  /// ended while a command waited for input.
  bool run(HostApp& app);

  /// Makes a running operation stop; safe to call from a signal handler.
  static void requestCancel();
  /// An interrupt stops the running operation, a second one the program; a closed pipe at the
  /// output is an error of the stream, no signal.
  static void installSignals();

  void print(const std::string& text) override;
  std::optional<std::string> readLine(const std::string& prompt, InputKind kind) override;
  void progressBegin(const std::string& label, int minimum, int maximum) override;
  void progressMove(int position) override;
  void progressEnd() override;
  bool cancelWanted() override;
  void cancelHandled() override;
  void displayChanged() override {}
  void inputQueued() override {}
  void regenerationWanted() override {}
  void focusCommandLine() override {}
  void quitWanted() override {}

 private:
  std::optional<std::string> nextLine();
  void clearProgress();

  std::ostream& out_;
  bool showProgress_;
  bool atLineStart_ = true;
  bool endedInside_ = false;
  std::deque<LineSource> sources_;
  std::string label_;
  int minimum_ = 0;
  int maximum_ = 0;
  int shownPercent_ = -1;
};

/// Lines of a stream, without their ends; a UTF-8 mark at its start is left out.
ACADHOST_EXPORT HeadlessFrontEnd::LineSource linesOf(std::istream& stream);

}  // namespace tarn::host
