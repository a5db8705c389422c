// Runs commands by name and gives them their inputs.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adesk.h"
#include "host/editor/inputstream.h"

namespace tarn::host {

class HostApp;

enum class CommandOutcome { kEnded, kCancelled, kFailed, kUnknown };

class ACADHOST_EXPORT CommandProcessor {
 public:
  explicit CommandProcessor(HostApp& app) : app_(app) {}

  /// A typed line and what it leaves over, or, while a command runs, a transparent one. False when
  /// a command failed or is unknown.
  bool runTyped(const std::string& line);

  /// Text run later by runQueued(); see HostApp::queueInput().
  void queue(const std::string& text);
  bool runQueued();
  bool hasQueued() const;

  /// Commands with complete inputs: the first is a command's name, the rest its inputs (and further
  /// commands). Stops at the first that does not end normally.
  CommandOutcome runComplete(std::vector<std::string> inputs);

  /// The next input for the running command, from what stands ready or from the front end.
  /// Transparent commands typed instead of an input are run on the way. "" is Enter; nothing when
  /// cancelled.
  std::optional<std::string> ask(const std::string& prompt, InputKind kind);

  /// Marks the running command as failed, after its message was printed.
  void failRunning();

  /// True when the running command's last input was cancelled.
  bool inputCancelled() const { return !running_.empty() && running_.back().inputCancelled; }

  /// The variable whose name was typed as a command, once; SETVAR runs for it.
  std::string takeNamedVariable() { return std::exchange(namedVariable_, {}); }

  bool isActive() const { return !running_.empty(); }
  /// Names joined by "'", outermost first.
  std::string activeNames() const;
  const std::string& lastCommand() const { return last_; }
  const std::vector<std::string>& history() const { return history_; }
  int failures() const { return failures_; }

 private:
  struct Running {
    std::string name;
    bool inputCancelled = false;
    bool failed = false;
  };

  CommandOutcome execute(const std::string& typedName, bool nested);
  void preparePickFirst(int flags);
  void finishPickFirst(int flags);
  CommandOutcome runHandler(void (*function)());
  std::optional<std::string> takeReady(const std::string& prompt, InputKind kind);
  bool runTransparent(const std::string& text);
  void reportUnknown(const std::string& name);

  HostApp& app_;
  InputStream inputs_;
  std::vector<Running> running_;
  std::vector<std::string> history_;
  std::string queued_;
  std::string namedVariable_;
  std::string last_;
  int failures_ = 0;
};

}  // namespace tarn::host
