#include "host/window/windowsettings.h"

#include <QFileInfo>
#include <QMainWindow>

#include "base/path.h"

namespace tarn::host {

namespace {

constexpr int kMostRecent = 9;

}  // namespace

WindowSettings::WindowSettings(const std::string& profileFolder)
    : file_(QString::fromStdString(joinPath(profileFolder, "window.ini")), QSettings::IniFormat) {}

void WindowSettings::restore(QMainWindow& window) const {
  window.restoreGeometry(file_.value("place").toByteArray());
  window.restoreState(file_.value("bars").toByteArray());
}

void WindowSettings::keep(const QMainWindow& window) {
  file_.setValue("place", window.saveGeometry());
  file_.setValue("bars", window.saveState());
}

Appearance WindowSettings::appearance() const {
  const int kept = number("appearance", static_cast<int>(Appearance::kDark));
  return kept == static_cast<int>(Appearance::kSystem)  ? Appearance::kSystem
         : kept == static_cast<int>(Appearance::kLight) ? Appearance::kLight
                                                        : Appearance::kDark;
}

void WindowSettings::setAppearance(Appearance appearance) {
  setNumber("appearance", static_cast<int>(appearance));
}

QStringList WindowSettings::recentFiles() const {
  QStringList present;
  for (const QString& path : file_.value("recent").toStringList()) {
    if (QFileInfo::exists(path)) present << path;
  }
  return present;
}

void WindowSettings::addRecentFile(const QString& path) {
  QStringList all = file_.value("recent").toStringList();
  if (!all.isEmpty() && all.front() == path) return;
  all.removeAll(path);
  all.prepend(path);
  file_.setValue("recent", QStringList(all.mid(0, kMostRecent)));
}

int WindowSettings::number(const QString& name, int standard) const {
  bool isNumber = false;
  const int value = file_.value(name).toInt(&isNumber);
  return isNumber ? value : standard;
}

}  // namespace tarn::host
