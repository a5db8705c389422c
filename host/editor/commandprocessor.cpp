#include "host/editor/commandprocessor.h"

#include <exception>
#include <utility>

#include "accmd.h"
#include "base/text.h"
#include "host/editor/aliases.h"
#include "host/editor/autosave.h"
#include "host/editor/documents.h"
#include "host/editor/editorobject.h"
#include "host/editor/hostapp.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

/// Nested deeper than this, a command runs itself.
constexpr size_t kDeepest = 32;
constexpr size_t kLongestHistory = 500;

/// What is needed of a command; the command itself may be removed or replaced while it runs.
struct FoundCommand {
  std::string globalName;
  int flags = 0;
  void (*function)() = nullptr;
};

std::optional<FoundCommand> findCommand(const std::string& typed) {
  const size_t first = typed.find_first_not_of('\'');
  if (first == std::string::npos) return std::nullopt;
  const std::string name = typed.substr(first);
  const AcEdCommand* command = acedRegCmds->lookupTyped(toWide(name).c_str());
  if (command == nullptr) {
    command = acedRegCmds->lookupTyped(toWide(commandOfAlias(name)).c_str());
  }
  if (command == nullptr) return std::nullopt;
  return FoundCommand{toUtf8(command->globalName()), command->commandFlags(),
                      command->functionAddr()};
}

/// A typed name without the marks that may stand before it.
std::string plainName(const std::string& typed) {
  const size_t first = typed.find_first_not_of("'_.");
  return first == std::string::npos ? typed : typed.substr(first);
}

std::string upper(const std::string& text) {
  std::string out = text;
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return out;
}

/// Holds the document's lock while a command runs, unless the command asked to do without.
class CommandLock {
 public:
  CommandLock(HostDocument& document, bool wanted) : document_(document), wanted_(wanted) {
    if (wanted_) document_.pushLock(AcAp::kAutoWrite);
  }
  ~CommandLock() {
    if (wanted_) document_.popLock();
  }
  CommandLock(const CommandLock&) = delete;
  CommandLock& operator=(const CommandLock&) = delete;

 private:
  HostDocument& document_;
  bool wanted_;
};

}  // namespace

std::string CommandProcessor::activeNames() const {
  std::string out;
  for (const Running& running : running_) {
    if (!out.empty()) out += "'";
    out += running.name;
  }
  return out;
}

void CommandProcessor::failRunning() {
  if (!running_.empty()) running_.back().failed = true;
}

bool CommandProcessor::runTyped(const std::string& line) {
  if (!trim(std::string_view(line)).empty()) {
    history_.push_back(line);
    if (history_.size() > kLongestHistory) history_.erase(history_.begin());
  }
  if (isActive()) return runTransparent(line);
  const int before = failures_;
  const size_t depth = inputs_.depth();
  // Text that was sent without its closing blank stands before what is typed now.
  inputs_.pushTyped(std::exchange(queued_, {}) + line);
  while (auto name = inputs_.next(InputKind::kCommand)) {
    if (name->text.empty()) continue;
    const CommandOutcome outcome = execute(name->text, false);
    // The rest of the line was meant for the command that did not end.
    if (outcome != CommandOutcome::kEnded) break;
  }
  inputs_.dropTo(depth);
  runQueued();
  return failures_ == before;
}

void CommandProcessor::queue(const std::string& text) {
  queued_ += text;
  if (hasQueued()) app_.frontEnd().inputQueued();
}

bool CommandProcessor::hasQueued() const {
  return finishedLength(queued_) > 0;
}

bool CommandProcessor::runQueued() {
  if (isActive()) return true;
  const int before = failures_;
  while (hasQueued() && !app_.quitRequested()) {
    const size_t length = finishedLength(queued_);
    const size_t depth = inputs_.depth();
    inputs_.pushSent(queued_.substr(0, length));
    queued_.erase(0, length);
    while (auto name = inputs_.next(InputKind::kCommand)) {
      if (name->text.empty()) continue;
      app_.print("\nCommand: " + name->text + "\n");
      execute(name->text, false);
    }
    inputs_.dropTo(depth);
  }
  return failures_ == before;
}

CommandOutcome CommandProcessor::runComplete(std::vector<std::string> inputs) {
  const size_t depth = inputs_.depth();
  inputs_.pushArguments(std::move(inputs));
  CommandOutcome outcome = CommandOutcome::kEnded;
  while (outcome == CommandOutcome::kEnded) {
    const auto name = inputs_.next(InputKind::kCommand);
    if (!name) break;
    if (!name->text.empty()) outcome = execute(name->text, true);
  }
  inputs_.dropTo(depth);
  return outcome;
}

bool CommandProcessor::runTransparent(const std::string& text) {
  size_t at = 0;
  const std::string name = takeToken(text, at);
  if (name.size() < 2 || name.front() != '\'') return false;
  const auto command = findCommand(name);
  if (!command) {
    reportUnknown(name);
    return false;
  }
  if ((command->flags & ACRX_CMD_TRANSPARENT) == 0) {
    app_.print("\n" + upper(plainName(name)) + " cannot run while another command waits.\n");
    return false;
  }
  const size_t depth = inputs_.depth();
  inputs_.pushTyped(text.substr(at));
  const CommandOutcome outcome = execute(name, true);
  inputs_.dropTo(depth);
  return outcome == CommandOutcome::kEnded;
}

std::optional<std::string> CommandProcessor::takeReady(const std::string& prompt, InputKind kind) {
  auto item = inputs_.next(kind);
  if (!item) return std::nullopt;
  const bool echo =
      item->source != InputStream::Source::kArguments || app_.variables().shortOf("CMDECHO") == 1;
  if (echo) app_.print(prompt + item->text + "\n");
  return std::move(item->text);
}

std::optional<std::string> CommandProcessor::ask(const std::string& prompt, InputKind kind) {
  const size_t owner = running_.size();
  for (;;) {
    std::optional<std::string> text = takeReady(prompt, kind);
    if (!text && !inputs_.atBarrier()) {
      text = app_.frontEnd().readLine(prompt, kind);
      if (text && (kind == InputKind::kText || kind == InputKind::kFileName)) {
        text = wholeLine(*text);
      } else if (text) {
        size_t at = 0;
        std::string first = takeToken(*text, at);
        if (at < text->size()) inputs_.pushTyped(text->substr(at));
        text = std::move(first);
      }
    }
    if (owner > 0) running_[owner - 1].inputCancelled = !text;
    if (!text) return std::nullopt;
    const bool transparent = text->size() > 1 && text->front() == '\'' &&
                             kind != InputKind::kText && kind != InputKind::kFileName;
    if (!transparent) return text;
    // Its inputs follow on the same line; they stand ready below.
    const auto command = findCommand(*text);
    if (!command || (command->flags & ACRX_CMD_TRANSPARENT) == 0) {
      runTransparent(*text);
      continue;
    }
    execute(*text, true);
    app_.print("\nResuming " + (owner > 0 ? running_[owner - 1].name : std::string()) +
               " command.\n");
  }
}

void CommandProcessor::reportUnknown(const std::string& name) {
  const std::string plain = upper(plainName(name));
  app_.print("\nUnknown command \"" + plain + "\". HELP lists all.\n");
  editorObject().notifyUnknown(toWide(plain), app_.documents().current().database());
}

/// What was selected before is for commands that take it; others, but for those that only look,
/// let it go.
void CommandProcessor::preparePickFirst(int flags) {
  if (!running_.empty()) return;
  SelectionMemory& memory = app_.documents().current().selection();
  memory.pickFirstUsable =
      (flags & ACRX_CMD_USEPICKSET) != 0 && app_.variables().shortOf("PICKFIRST") == 1;
  if (!memory.pickFirstUsable && (flags & ACRX_CMD_TRANSPARENT) == 0) memory.pickFirst.clear();
}

void CommandProcessor::finishPickFirst(int flags) {
  SelectionMemory& memory = app_.documents().current().selection();
  memory.pickFirstUsable = false;
  if ((flags & (ACRX_CMD_REDRAW | ACRX_CMD_TRANSPARENT)) == 0) memory.pickFirst.clear();
  app_.frontEnd().displayChanged();
}

CommandOutcome CommandProcessor::execute(const std::string& typedName, bool nested) {
  auto command = findCommand(typedName);
  if (!command && app_.variables().typeOf(plainName(typedName))) {
    namedVariable_ = upper(plainName(typedName));
    command = findCommand("_SETVAR");
  }
  if (!command) {
    if (!nested) ++failures_;
    reportUnknown(typedName);
    return CommandOutcome::kUnknown;
  }
  if (running_.size() >= kDeepest) {
    app_.print("\nCommands are nested too deeply.\n");
    return CommandOutcome::kFailed;
  }
  if (running_.empty()) {
    app_.frontEnd().cancelHandled();
    app_.documents().endUndoStep({});
  }
  preparePickFirst(command->flags);
  running_.push_back({command->globalName});
  const std::wstring wide = toWide(command->globalName);
  const CommandOutcome outcome = [&] {
    const CommandLock lock(app_.documents().current(), (command->flags & ACRX_CMD_SESSION) == 0);
    editorObject().notifyWillStart(wide);
    return runHandler(command->function);
  }();
  running_.pop_back();
  editorObject().notifyEnd(wide, outcome);
  if (running_.empty()) finishPickFirst(command->flags);
  // Commands inside another one are part of its step.
  if (running_.empty()) {
    app_.documents().endUndoStep(upper(command->globalName));
    app_.autosave().tick();
  }
  if (outcome == CommandOutcome::kEnded && !nested) last_ = plainName(typedName);
  if (outcome == CommandOutcome::kFailed && !nested) ++failures_;
  return outcome;
}

CommandOutcome CommandProcessor::runHandler(void (*function)()) {
  const std::string name = running_.back().name;
  const size_t level = running_.size();
  try {
    function();
  } catch (const std::exception& error) {
    app_.print("\nCommand \"" + name + "\" failed: " + error.what() + "\n");
    running_[level - 1].failed = true;
  } catch (...) {
    app_.print("\nCommand \"" + name + "\" failed.\n");
    running_[level - 1].failed = true;
  }
  running_.resize(level);
  if (running_.back().failed) return CommandOutcome::kFailed;
  if (!running_.back().inputCancelled) return CommandOutcome::kEnded;
  app_.print("\n*Cancel*\n");
  return CommandOutcome::kCancelled;
}

}  // namespace tarn::host
