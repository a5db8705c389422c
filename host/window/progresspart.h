// Label, bar and times of a running operation.
#pragma once

#include <QElapsedTimer>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace tarn::host {

/// "9 s", "2:05 min", "1:02:05 h".
QString durationText(double seconds);

/// "12 s gone", with what is probably left once that can be told. `part` goes from 0 to 1.
QString timesText(double seconds, double part);

/// Moves a bar without painting it at once: the window is painted when it is looked after.
void moveBar(QProgressBar& bar, int position);

class ProgressPart : public QWidget {
 public:
  ProgressPart();

  /// Without room between the limits the bar shows only that something goes on.
  void begin(const QString& label, int minimum, int maximum);
  void move(int position) { position_ = position; }
  /// Shows place and time as they are now.
  void refresh();
  /// As refresh(), some times a second; called more often.
  void tick();
  qint64 milliseconds() const { return since_.isValid() ? since_.elapsed() : 0; }

 private:
  QLabel* label_;  ///< all three belong to the widget
  QProgressBar* bar_;
  QLabel* times_;
  int position_ = 0;
  QElapsedTimer since_;
  QElapsedTimer refreshed_;
};

}  // namespace tarn::host
