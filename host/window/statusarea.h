// The status bar: what the program waits for, a progress meter, switches, scale and twist of the
// view, the ground under the mouse.
#pragma once

#include <QStatusBar>

#include "host/graphics/viewstate.h"

class QAction;
class QLabel;
class QMenu;
class QProgressBar;

namespace tarn::host {

/// Easting and northing with three decimals, as the status bar shows them.
QString coordinateText(GroundPoint ground);
/// "1 : 500" when a drawing unit is a metre, with at most three digits that count; `dotsPerInch`
/// are device pixels of the screen.
QString scaleText(const ViewState& view, double dotsPerInch);
/// Degrees with at most two decimals; empty when north is up.
QString twistText(const ViewState& view);

class StatusArea : public QStatusBar {
 public:
  StatusArea();

  void showState(const QString& text);
  void showGround(GroundPoint ground);
  void showView(const ViewState& view);
  /// A button for the action, with a menu beside it unless that is null; it takes the menu.
  void addSwitch(QAction& action, QMenu* menu);
  /// Sets what does not change while the program runs in the words of now.
  void speakAgain();
  /// Without room between the limits the meter shows only that something goes on.
  void beginProgress(const QString& label, int minimum, int maximum);
  void moveProgress(int position);
  void endProgress();

 private:
  QLabel* state_;  ///< all six belong to the widget
  QLabel* label_;
  QProgressBar* meter_;
  QLabel* scale_;
  QLabel* twist_;
  QLabel* ground_;
  int switches_ = 0;
};

}  // namespace tarn::host
