// The front end of the host in a window: shows text, reads lines in nested event loops, keeps the
// window painted while the host computes and holds back all input but Escape meanwhile.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/window/transcript.h"

namespace tarn::host {

class Canvas;
class CommandLine;
class HeldInput;
class OperationWindows;
class StatusArea;

class WindowFrontEnd final : public FrontEnd {
 public:
  /// What is called back; each may be empty. None is called from inside a call of this class that
  /// says so in FrontEnd (inputQueued comes from the event loop).
  struct Hooks {
    std::function<void()> stateChanged;  ///< another prompt, or busy or free again
    std::function<void()> runQueued;
    std::function<void()> quit;
  };

  WindowFrontEnd();
  ~WindowFrontEnd() override;

  /// Text printed before this is kept and shown then. The widgets must outlive the front end's use:
  /// call detach() before they go.
  void attach(Canvas& canvas, CommandLine& line, StatusArea& status, Hooks hooks);
  void detach();

  /// Paints the window, and makes what long operations show: the first of them waits for neither.
  void prepare();
  /// Everything the command line shows goes to this file too.
  Status logTo(const std::string& path) { return transcript_.open(path); }
  /// Nothing runs any more: the next command is awaited.
  void commandAwaited();

  void print(const std::string& text) override;
  std::optional<std::string> readLine(const std::string& prompt, InputKind kind) override;
  /// A dialog, unless a script goes on.
  PlotChoice choosePlot(PlotJob& job) override;
  void progressBegin(const std::string& label, int minimum, int maximum) override;
  void progressMove(int position) override;
  void progressEnd() override;
  OperationView* operations() override;
  bool cancelWanted() override;
  void cancelHandled() override;
  void displayChanged() override;
  void inputQueued() override;
  void regenerationWanted() override;
  void focusCommandLine() override;
  void quitWanted() override;

  /// Where further lines of the program's script come from; nothing at its end. Commands that ask
  /// get their inputs from there first.
  using LineSource = std::function<std::optional<std::string>()>;
  void addLines(LineSource source);
  /// Runs the script's lines as commands until it ends or QUIT. A line that begins with ";" is a
  /// remark.
  void runLines(HostApp& app);

  /// True while a command waits for a line.
  bool reading() const { return !readers_.empty(); }
  /// True while a form, a chooser or a report waits for the user.
  bool asking() const;
  /// What it waits for; kCommand when nothing waits.
  InputKind readingKind() const;
  /// The line for what waits; without anything waiting it is dropped.
  void give(const std::string& line);
  /// Cancels what waits.
  void cancelRead();
  /// Cancels all that waits now and later, and what computes: the window is being closed.
  void close();
  /// True while events are handled in the middle of a computation.
  bool pumping() const { return pumping_; }
  /// The running operation is to stop.
  void wantCancel() { cancelWanted_ = true; }
  /// Calls the hook stateChanged.
  void tellState();
  /// Keys that were held back go to the input line now.
  void releaseHeldInput();

 private:
  struct Reader;
  std::optional<std::string> nextLine();
  void showPrompt();
  void settleView();
  void endRead(std::optional<std::string> line);
  void pump();
  void pumpSometimes();

  Canvas* canvas_ = nullptr;
  CommandLine* line_ = nullptr;
  StatusArea* status_ = nullptr;
  Hooks hooks_;
  LineAssembler lines_;
  Transcript transcript_;
  std::string early_;  ///< printed before there was a window
  std::deque<LineSource> script_;
  std::vector<Reader*> readers_;
  std::unique_ptr<HeldInput> held_;
  std::unique_ptr<OperationWindows> operations_;
  bool plans_ = false;  ///< the dialog of a plot is open
  QElapsedTimer sincePump_;
  QTimer queueTimer_;
  bool pumping_ = false;
  bool cancelWanted_ = false;
  bool closing_ = false;
};

}  // namespace tarn::host
