// The window of the program: canvas, command line, tabs, status bar, menus, files dropped on it.
#pragma once

#include <QMainWindow>
#include <memory>
#include <string>
#include <vector>

#include "host/window/keyboardways.h"
#include "host/window/menus.h"
#include "host/window/palettes.h"
#include "host/window/session.h"
#include "host/window/switches.h"
#include "host/window/windowsettings.h"

class QDragEnterEvent;
class QDropEvent;
class QSplitter;

namespace tarn::host {

class Canvas;
class CommandLine;
class DialogBackend;
class DrawingTabs;
class Guide;
class HostApp;
class SheetTabs;
class StatusArea;
class WindowFrontEnd;

class MainWindow : public QMainWindow {
 public:
  /// All three must outlive the window.
  MainWindow(HostApp& app, WindowFrontEnd& frontEnd, DialogBackend& dialogs);
  ~MainWindow() override;

  Canvas& canvas() { return *canvas_; }
  CommandLine& commandLine() { return *line_; }
  Session& session() { return session_; }

  /// Opens drawings, then adds images to the last of them; every other file is refused with a
  /// message that names it.
  void addFiles(const std::vector<std::string>& paths);

  /// Shows the first steps, unless `unasked` and the user has closed them for good.
  void showGuide(bool unasked);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void buildCanvas();
  void buildCommandLine();
  void buildTabs();
  void arrange();
  MenuHooks menuHooks();
  Switches::Hooks switchHooks();
  void speakAgain();
  void showState();
  void showTabs();
  void showDrawing(int index, bool closes);
  void showSheet(const std::string& name);
  void openSheetMenu(const std::string& name, QPoint at);
  void openMenuOfCanvas(QPoint at);
  void toggleTextWindow();
  void chooseImages();
  void showAbout();

  HostApp& app_;
  WindowFrontEnd& frontEnd_;
  DialogBackend& dialogs_;
  WindowSettings settings_;
  Session session_;
  Menus menus_;
  Switches switches_;
  Palettes palettes_;
  QSplitter* halves_ = nullptr;  ///< these seven belong to the window
  Canvas* canvas_ = nullptr;
  CommandLine* line_ = nullptr;
  StatusArea* status_ = nullptr;
  DrawingTabs* drawings_ = nullptr;
  SheetTabs* sheets_ = nullptr;
  Guide* guide_ = nullptr;
  std::unique_ptr<KeyboardWays> ways_;
};

}  // namespace tarn::host
