// What the window remembers between sessions, in the file window.ini of the profile.
#pragma once

#include <QSettings>
#include <QStringList>
#include <string>

#include "host/window/appearance.h"

class QMainWindow;

namespace tarn::host {

class WindowSettings {
 public:
  explicit WindowSettings(const std::string& profileFolder);

  /// Place, size and bars; bars made later take their places then. A window that has never been
  /// closed stays as it is.
  void restore(QMainWindow& window) const;
  void keep(const QMainWindow& window);

  Appearance appearance() const;
  void setAppearance(Appearance appearance);
  /// The ground of the drawing.
  bool lightDrawing() const { return file_.value("lightDrawing", false).toBool(); }
  void setLightDrawing(bool light) { file_.setValue("lightDrawing", light); }

  /// Newest first, only those that are still there.
  QStringList recentFiles() const;
  void addRecentFile(const QString& path);
  void clearRecentFiles() { file_.remove("recent"); }

  /// A number kept under a name.
  int number(const QString& name, int standard) const;
  void setNumber(const QString& name, int value) { file_.setValue(name, value); }

 private:
  QSettings file_;
};

}  // namespace tarn::host
