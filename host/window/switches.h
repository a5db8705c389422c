// What the user switches in the window: appearance, drawing ground, language, snaps, ortho, text
// window. Kept in the window's settings.
#pragma once

#include <QAction>
#include <functional>
#include <memory>

#include "host/window/windowsettings.h"
#include "host/window/words.h"

class QMenu;
class QWidget;

namespace tarn::host {

class HostApp;

class Switches {
 public:
  struct Hooks {
    std::function<void()> textWindow;  ///< shows or hides it
    std::function<void()> fullScreen;
    std::function<void()> changed;  ///< words or colours are others now
  };
  /// All must outlive the object; the actions belong to the window.
  Switches(QWidget& window, HostApp& app, WindowSettings& settings, Hooks hooks);

  /// Appends to a menu, in the words of now. `bars` are its entries for docks and tool bars.
  void fill(QMenu& menu, QMenu* bars);
  /// The actions that the status bar shows.
  QAction& snaps() { return *snaps_; }
  QAction& ortho() { return *ortho_; }
  /// The kinds of running object snaps as checkable entries.
  void fillSnaps(QMenu& menu);
  /// Follows variables that commands have changed. True when the language is another one now.
  bool follow();
  /// Snaps and ortho, for the next session.
  void keep();

 private:
  void setLanguage(Language language);
  void addAppearance(QMenu& menu);
  void addGround(QMenu& menu);
  void addLanguages(QMenu& menu);

  QWidget& window_;
  HostApp& app_;
  WindowSettings& settings_;
  Hooks hooks_;
  QAction* text_;  ///< these four belong to the window
  QAction* snaps_;
  QAction* ortho_;
  QAction* full_;
  Language language_;
};

}  // namespace tarn::host
