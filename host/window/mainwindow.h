// The window of the program: canvas, command line, status bar, menus, files dropped on it.
#pragma once

#include <QMainWindow>
#include <string>
#include <vector>

#include "host/window/session.h"

class QDragEnterEvent;
class QDropEvent;

namespace tarn::host {

class Canvas;
class CommandLine;
class DialogBackend;
class HostApp;
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

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void buildCanvas();
  void buildCommandLine();
  void fillMenus();
  void showState();
  void chooseImages();
  void showAbout();

  HostApp& app_;
  WindowFrontEnd& frontEnd_;
  DialogBackend& dialogs_;
  Session session_;
  Canvas* canvas_ = nullptr;  ///< these three belong to the window
  CommandLine* line_ = nullptr;
  StatusArea* status_ = nullptr;
};

}  // namespace tarn::host
