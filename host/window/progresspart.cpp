#include "host/window/progresspart.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr double kSoonestGuess = 1;      // seconds
constexpr double kLeastForGuess = 0.02;  // of the work
// Each takes half a millisecond of painting away from the work.
constexpr qint64 kRefreshMilliseconds = 200;

}  // namespace

QString durationText(double seconds) {
  const auto whole = static_cast<qint64>(seconds + 0.5);
  const auto two = [](qint64 number) { return QString("%1").arg(number, 2, 10, QChar('0')); };
  if (whole < 60) return QString("%1 s").arg(whole);
  if (whole < 3600) return QString("%1:%2 min").arg(whole / 60).arg(two(whole % 60));
  return QString("%1:%2:%3 h").arg(whole / 3600).arg(two(whole / 60 % 60)).arg(two(whole % 60));
}

QString timesText(double seconds, double part) {
  const QString gone = durationText(seconds);
  if (seconds < kSoonestGuess || part < kLeastForGuess || part >= 1)
    return words("%1 gone").arg(gone);
  const double left = qMax(1.0, seconds * (1 - part) / part);
  return words("%1 gone, about %2 left").arg(gone, durationText(left));
}

void moveBar(QProgressBar& bar, int position) {
  // setValue() paints by itself, many times more often than anybody sees.
  bar.setUpdatesEnabled(false);
  bar.setValue(qBound(bar.minimum(), position, bar.maximum()));
  bar.setUpdatesEnabled(true);
}

ProgressPart::ProgressPart()
    : label_(new QLabel(this)), bar_(new QProgressBar(this)), times_(new QLabel(this)) {
  label_->setObjectName("operationLabel");
  bar_->setObjectName("operationBar");
  times_->setObjectName("operationTimes");
  label_->setTextFormat(Qt::PlainText);
  label_->setWordWrap(true);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label_);
  layout->addWidget(bar_);
  layout->addWidget(times_);
}

void ProgressPart::begin(const QString& label, int minimum, int maximum) {
  label_->setText(label.trimmed());
  bar_->setRange(minimum, qMax(minimum, maximum));
  bar_->setValue(minimum);
  position_ = minimum;
  since_.start();
  refresh();
}

void ProgressPart::tick() {
  if (!refreshed_.isValid() || refreshed_.elapsed() >= kRefreshMilliseconds) refresh();
}

void ProgressPart::refresh() {
  refreshed_.start();
  moveBar(*bar_, position_);
  const double room = static_cast<double>(bar_->maximum()) - bar_->minimum();
  const double part = room > 0 ? (bar_->value() - bar_->minimum()) / room : 0;
  times_->setText(since_.isValid() ? timesText(static_cast<double>(milliseconds()) / 1000, part)
                                   : QString());
}

}  // namespace tarn::host
