// The status bar: what the program waits for, a progress meter, the ground under the mouse.
#pragma once

#include <QStatusBar>

#include "host/graphics/viewstate.h"

class QLabel;
class QProgressBar;

namespace tarn::host {

/// Easting and northing with three decimals, as the status bar shows them.
QString coordinateText(GroundPoint ground);

class StatusArea : public QStatusBar {
 public:
  StatusArea();

  void showState(const QString& text);
  void showGround(GroundPoint ground);
  /// Without room between the limits the meter shows only that something goes on.
  void beginProgress(const QString& label, int minimum, int maximum);
  void moveProgress(int position);
  void endProgress();

 private:
  QLabel* state_;  ///< all four belong to the widget
  QLabel* label_;
  QProgressBar* meter_;
  QLabel* ground_;
};

}  // namespace tarn::host
