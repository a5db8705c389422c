// A whole window over a whole host, driven by mouse and key events.
#pragma once

#include <gtest/gtest.h>

#include <QPoint>
#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/editor/hostapp.h"
#include "host/window/canvas.h"
#include "host/window/commandline.h"
#include "host/window/dialogs.h"
#include "host/window/mainwindow.h"
#include "host/window/windowfrontend.h"

namespace tarn::test {

/// One message as a watcher saw it, with the view of that moment.
struct Seen {
  unsigned message = 0;
  host::ViewState view;
  long wheel = 0;
};

/// The file of this program.
QString testProgram();

/// Everything inside that takes the keyboard or can be pressed has a name for screen readers.
void expectNames(const QWidget& whole);

class WindowTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Types into whatever has the keyboard, as a user does who never clicks the input line.
  void type(const QString& text);
  void key(int key);
  /// Types a line and Enter. Returns when the command has ended: one that waits for input must be
  /// started by play().
  void enter(const QString& text);
  /// Runs the steps from the event loop, one after the other, also while an earlier one has started
  /// a command that waits. Returns when all have returned.
  void play(std::vector<std::function<void()>> steps);
  void move(QPoint to, Qt::MouseButtons held = Qt::NoButton);
  /// Of the middle button.
  void doubleClick(QPoint at);
  void drag(QPoint from, QPoint to, int steps);
  void wheel(QPoint at, int notches);
  /// Handles events for some time.
  static void wait(int milliseconds);
  QString history() const { return window_->commandLine().historyText(); }
  QString state() const;
  QString childText(const char* name) const;
  /// Regenerations since the window was made (each leaves a line of statistics).
  int regenerations() const;
  host::GroundPoint groundUnder(QPoint local) const;

  static std::vector<Seen>& seen();
  QWidget* keyboardOwner() const;

  QTemporaryDir folder_;
  host::WindowFrontEnd frontEnd_;
  host::DialogBackend dialogs_;
  std::unique_ptr<host::HostApp> app_;
  std::unique_ptr<host::MainWindow> window_;
};

}  // namespace tarn::test
