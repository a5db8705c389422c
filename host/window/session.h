// What the user does in the window, turned into calls of the host at a moment when it may be
// called: lines, files, points, Escape, closing. Toolkit-free but for its timing.
#pragma once

#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "host/window/entitypicker.h"

namespace tarn::host {

class HostApp;
class WindowFrontEnd;

class Session {
 public:
  /// Both must outlive the session. `closeWindow` is called once closing has been asked for and
  /// nothing runs any more.
  Session(HostApp& app, WindowFrontEnd& frontEnd, std::function<void()> closeWindow);

  /// True when the host may be called now: no command computes.
  bool mayAct() const;
  /// PAN waits for a point: the view may be dragged instead.
  bool panWaits() const;
  /// Something runs and does not wait for an input.
  bool busy() const { return !mayAct() || (working_ && !reading()); }

  /// A line of the command line: an answer for a waiting command, else a command; empty repeats the
  /// last one.
  void enter(const std::string& line);
  /// The left button in the drawing.
  EntityPicker& picker() { return picker_; }
  /// Cancels what waits or computes; when nothing does, lets go of what was chosen.
  void escape();

  /// Calls of the host that may take long, once nothing runs any more. A waiting command is
  /// cancelled first.
  void perform(std::function<void()> work);
  /// A command from the menus. A waiting command is cancelled first.
  void run(const std::string& line);
  /// A command that changes only the view: a waiting command goes on afterwards.
  void look(const std::string& line);
  void openDrawings(const std::vector<std::string>& files);
  /// A command whose file questions are answered with `files`; then, with nothing in the drawing
  /// before, the view shows it all.
  void addImages(const std::vector<std::string>& files);
  /// The same with what the command itself asks for: files, or images of a server. `around` is told
  /// when that begins and ends.
  void chooseImages(std::function<void(bool begins)> around);
  /// Text that the host wants run; does nothing while a command runs.
  void runQueued();

  /// The canvas has called the host by itself (a regeneration, say): what arrived meanwhile
  /// follows.
  void acted();

  /// Ends the program as soon as nothing runs, after the question about unsaved changes. True when
  /// that is now.
  bool requestClose();

 private:
  bool reading() const;
  void addBy(std::function<void()> add);
  void runNext();
  void finish();

  HostApp& app_;
  WindowFrontEnd& frontEnd_;
  EntityPicker picker_;
  std::function<void()> closeWindow_;
  std::vector<std::function<void()>> waiting_;  ///< run one after the other once nothing runs
  QTimer closeTimer_;
  QTimer copyTimer_;  ///< looks whether automatic copies are due
  bool working_ = false;
  bool quitAsked_ = false;  ///< QUIT runs or waits because of requestClose()
  bool closeAsked_ = false;
};

}  // namespace tarn::host
