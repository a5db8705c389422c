// The front end of the host: what shows its text and reads its lines. The window and the headless
// program each implement it; the editor above knows only this. Every call comes on the main thread,
// texts are UTF-8.
#pragma once

#include <optional>
#include <string>

namespace tarn::host {

class OperationView;

/// What an input line is for. A front end may show it differently (a crosshair for points); it
/// never changes what it must return.
enum class InputKind {
  kCommand,   ///< the name of a command
  kToken,     ///< a number, a keyword or a word; ends at the first blank
  kPoint,     ///< as kToken; a picked point is returned as the text of formatPoint()
  kSelect,    ///< as kPoint, to choose entities: no snapping; a dragged window may be returned as
              ///< "_Window" or "_Crossing" with its two corners
  kText,      ///< a whole line
  kFileName,  ///< a whole line
  kAnswer,    ///< the answer to a question, yes or no
};

struct PlotJob;

/// How PLOT goes on after its settings were shown.
enum class PlotChoice {
  kByPrompts,   ///< nothing was shown: ask on the command line
  kPickWindow,  ///< let the user pick the window in the drawing, then show the settings again
  kPlot,
  kCancel,
};

class FrontEnd {
 public:
  virtual ~FrontEnd() = default;

  /// Adds text to the command line's history, exactly as given: a "\n" inside begins a new line,
  /// and none is added. (LineAssembler turns the pieces into lines.)
  virtual void print(const std::string& text) = 0;

  /// Asks for one line while a command waits: shows `prompt`, waits, returns the line without its
  /// end. An empty line is Enter. Nothing is returned when the user cancels (Escape, the window is
  /// closed, end of a script): the command then gets a cancelled input. The front end shows the
  /// line in its history by itself. The window runs its event loop meanwhile; view changes and
  /// HostApp::runLine() of a transparent command ("'zoom") may come from there.
  virtual std::optional<std::string> readLine(const std::string& prompt, InputKind kind) = 0;

  /// Shows the settings of a plot and lets the user change them.
  virtual PlotChoice choosePlot(PlotJob& /*job*/) { return PlotChoice::kByPrompts; }

  /// A progress display. begin replaces an earlier one; move gets values of [minimum, maximum]; end
  /// without begin is fine.
  virtual void progressBegin(const std::string& label, int minimum, int maximum) = 0;
  virtual void progressMove(int position) = 0;
  virtual void progressEnd() = 0;

  /// Windows for forms, tasks and progress; null without any.
  virtual OperationView* operations() { return nullptr; }

  /// True once the user has asked to stop the running operation (Escape, interrupt signal); cleared
  /// when the next command starts (cancelHandled). May let the window paint itself and look for
  /// keys; must return quickly, since long operations ask often.
  virtual bool cancelWanted() = 0;
  virtual void cancelHandled() = 0;

  /// What HostApp::renderTo() draws has changed: paint again soon. Cheap; may come many times.
  virtual void displayChanged() = 0;

  /// Text waits to be run (HostApp::runQueued). Call that when no command runs: from the event loop
  /// in the window, before the next line in a script. Never from inside this call.
  virtual void inputQueued() = 0;

  /// The view was panned or zoomed without a regeneration. Call HostApp::regenerate() when the
  /// wheel has been still for a moment (about 120 ms); a script need not.
  virtual void regenerationWanted() = 0;

  /// The user wants to go on typing: give the keyboard to the command line.
  virtual void focusCommandLine() = 0;

  /// The command QUIT ran: leave the main loop after the current command.
  virtual void quitWanted() = 0;
};

}  // namespace tarn::host
