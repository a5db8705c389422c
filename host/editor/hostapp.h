// The running host as its front ends see it: documents, view, command line and picture behind one
// object of plain operations. One a process, made by the program, reached by the public host
// functions through HostApp::instance(). Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adesk.h"
#include "base/result.h"
#include "host/graphics/viewstate.h"

class QPainter;
class AcApDocument;
struct tagMSG;
using MSG = tagMSG;

namespace tarn::host {

class AutoSave;
struct Clipboard;
class CommandProcessor;
class Documents;
class FrontEnd;
class Profile;
class Regenerator;
class SystemVariables;
class UiBackend;

class ACADHOST_EXPORT HostApp {
 public:
  /// Both interfaces must outlive the object. `profileFolder` is the user's folder for settings and
  /// cache; nothing is written there by this constructor. Makes the first, empty drawing.
  HostApp(FrontEnd& frontEnd, UiBackend& ui, const std::string& profileFolder);
  ~HostApp();
  HostApp(const HostApp&) = delete;
  HostApp& operator=(const HostApp&) = delete;

  /// The one object, or null before it was made and after it is gone.
  static HostApp* instance();

  // ---- Command line -------------------------------------------------------------------------
  /// Runs one line typed while a command name is awaited, and then everything queued meanwhile. The
  /// first word is the command, the rest its inputs. An empty line does nothing here (a front end
  /// that repeats the last command on Enter runs lastCommand()). While a command waits for input
  /// only transparent commands run ("'zoom 2x"). False when a command failed or is unknown.
  bool runLine(const std::string& line);

  /// Text for the command line, run as if typed once the running command has ended; a blank or a
  /// line end is Enter. Text after the last of these stays until more comes.
  void queueInput(const std::string& text);

  /// Runs a command whose file dialogs are answered with `files` (full paths), whatever FILEDIA is:
  /// how files dropped on the window or named at the start are added ("addImage").
  bool runWithFiles(const std::string& command, const std::vector<std::string>& files);

  /// True while such a command has files that no dialog has asked for yet.
  bool filesGiven() const;

  /// While a script plays the user, menus are asked on the command line.
  void playScript(bool playing);

  /// Runs what is queued; does nothing while a command runs. False when one of them failed.
  bool runQueued();
  bool hasQueued() const;

  /// True while a command runs or waits for input.
  bool commandActive() const;
  /// Names of the running commands as CMDNAMES has them ("LINE'ZOOM"); empty when there is none.
  std::string commandNames() const;
  /// Name of the last command that ended normally, for repeating it on Enter.
  const std::string& lastCommand() const;
  /// Lines typed so far, oldest first, for recalling them.
  const std::vector<std::string>& commandHistory() const;
  /// Names that begin with `start` (case does not matter), sorted, for completion.
  std::vector<std::string> commandsBeginningWith(const std::string& start) const;
  /// Number of commands that failed or were unknown since the start.
  int failedCommands() const;
  /// Leaves the main loop after the running command; the reactors are told.
  void requestQuit();
  /// True when requestQuit() was called, for instance by QUIT.
  bool quitRequested() const;

  // ---- View of the current drawing ----------------------------------------------------------
  /// The view of what is current: the model, a sheet, or the model through a viewport.
  ViewState view() const;
  /// The view that fills the screen: of the model, or of the sheet that is shown.
  const ViewState& screenView() const;
  /// The view of what is current over the whole screen: what device positions of the mouse mean.
  ViewState mouseView() const;
  /// The point of the current space under a device position of the screen.
  GroundPoint groundAt(PixelPoint pixel) const;
  /// True when the model is current through a viewport of the shown sheet.
  bool inViewport() const;
  /// Shows the tab of that name ("Model", or a sheet) and regenerates; the sentence says why not.
  Status showTab(const std::string& name);
  /// On a sheet: goes to work in the viewport that stands under the position, or on the sheet when
  /// none does, by the commands MSPACE and PSPACE. False, and nothing done, in the model's tab and
  /// while a command runs.
  bool workAt(PixelPoint pixel);
  /// Sets the view, remembers the earlier one for ZOOM Previous, repaints, does not regenerate.
  void setView(const ViewState& view);
  /// The window's canvas (device pixels) got another size: the scale stays, the centre stays.
  void resizeView(int pixelWidth, int pixelHeight);
  void zoomAt(PixelPoint pixel, double factor);
  void panBy(double dx, double dy);
  /// The user has let go of the view: the next zoomAt() or panBy() is a new change for ZOOM
  /// Previous. A regeneration says the same.
  void viewSettled();
  /// Shows the extents of the visible entities with a margin of 1 per cent and regenerates. False
  /// when there is nothing to show.
  bool zoomExtents();
  bool zoomPrevious();
  /// Draws every entity anew for the current view, then repaints.
  void regenerate();
  /// The same after a change of the view; with REGENMODE 0 the pictures already there only move.
  void regenerateForView();

  // ---- Picture ------------------------------------------------------------------------------
  /// Paints the drawing with the current view, scaled so that the view fills `width` x `height`
  /// device pixels of the painter from its origin. The same renderer makes window and PNG.
  void renderTo(QPainter& painter, int width, int height) const;
  /// Writes the current view as PNG; the sentence says why when it failed.
  std::string savePicture(const std::string& path) const;

  /// 0xRRGGBB; dark at the start. Colour index 7 becomes its opposite.
  void setBackground(std::uint32_t rgb);

  // ---- Messages -----------------------------------------------------------------------------
  /// Hands a raw window message (mouse wheel, buttons) to the watchers. Call it BEFORE acting on
  /// the message; it never consumes one.
  void dispatchWindowMessage(const MSG& message);
  /// Shows text on the command line.
  void print(const std::string& utf8);

  // ---- Documents ----------------------------------------------------------------------------
  AcApDocument* currentDocument() const;
  /// Name shown in the window's title.
  std::string documentTitle() const;

  // ---- Statistics ---------------------------------------------------------------------------
  /// With it on, each regeneration and each operation with progress
  /// prints one JSON line to the command line.
  void setStatistics(bool on);

  // ---- Parts, for the public host functions -------------------------------------------------
  FrontEnd& frontEnd();
  UiBackend& ui();
  Documents& documents();
  CommandProcessor& commands();
  SystemVariables& variables();
  Profile& profile();
  Regenerator& regenerator();
  Clipboard& clipboard();
  AutoSave& autosave();

 private:
  struct Parts;
  void moveTo(const ViewState& view);

  std::unique_ptr<Parts> parts_;
};

/// A point as input text, in digits that read back the same doubles: "40500123.456,3512345.678".
ACADHOST_EXPORT std::string formatPoint(double x, double y);

/// Turns printed pieces into lines, without empty ones: a "\n" at the start of a line is taken as
/// the end of the line before.
class ACADHOST_EXPORT LineAssembler {
 public:
  /// Adds text; returns the lines that are complete now.
  std::vector<std::string> add(const std::string& text);
  /// The line that is still open.
  const std::string& open() const { return open_; }
  /// Ends the open line, if any, and returns it.
  std::vector<std::string> flush();

 private:
  std::string open_;
};

}  // namespace tarn::host
