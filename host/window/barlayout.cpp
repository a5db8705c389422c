#include "host/window/barlayout.h"

#include <QMainWindow>
#include <QSettings>

#include "base/path.h"

namespace tarn::host {

namespace {

constexpr const char* kKey = "bars";

QString fileIn(const std::string& folder) {
  return QString::fromStdString(joinPath(folder, "window.ini"));
}

}  // namespace

void restoreBars(QMainWindow& window, const std::string& profileFolder) {
  const QSettings settings(fileIn(profileFolder), QSettings::IniFormat);
  window.restoreState(settings.value(kKey).toByteArray());
}

void keepBars(const QMainWindow& window, const std::string& profileFolder) {
  QSettings(fileIn(profileFolder), QSettings::IniFormat).setValue(kKey, window.saveState());
}

}  // namespace tarn::host
