// Where the bars of the window stand, kept in the profile between sessions.
#pragma once

#include <string>

class QMainWindow;

namespace tarn::host {

/// Bars made later take their places then.
void restoreBars(QMainWindow& window, const std::string& profileFolder);
void keepBars(const QMainWindow& window, const std::string& profileFolder);

}  // namespace tarn::host
