#include "host/window/statusarea.h"

#include <QFontDatabase>
#include <QLabel>
#include <QProgressBar>

#include "host/window/progresspart.h"

namespace tarn::host {

QString coordinateText(GroundPoint ground) {
  return QString::number(ground.x, 'f', 3) + ", " + QString::number(ground.y, 'f', 3);
}

StatusArea::StatusArea()
    : state_(new QLabel(this)),
      label_(new QLabel(this)),
      meter_(new QProgressBar(this)),
      ground_(new QLabel(this)) {
  state_->setObjectName("state");
  label_->setObjectName("progressLabel");
  meter_->setObjectName("progress");
  ground_->setObjectName("ground");
  QFont digits = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  ground_->setFont(digits);
  ground_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  const QString widest = coordinateText({-140500123.456, -13512345.678});
  ground_->setMinimumWidth(ground_->fontMetrics().horizontalAdvance(widest));
  meter_->setMaximumHeight(state_->sizeHint().height());
  meter_->setFixedWidth(12 * state_->fontMetrics().averageCharWidth() * 2);
  meter_->setTextVisible(true);
  setContentsMargins(4, 0, 4, 0);
  addWidget(state_, 1);
  addPermanentWidget(label_);
  addPermanentWidget(meter_);
  addPermanentWidget(ground_);
  endProgress();
}

void StatusArea::showState(const QString& text) {
  state_->setText(text);
}

void StatusArea::showGround(GroundPoint ground) {
  ground_->setText(coordinateText(ground));
}

void StatusArea::beginProgress(const QString& label, int minimum, int maximum) {
  label_->setText(label.trimmed());
  meter_->setRange(minimum, qMax(minimum, maximum));
  meter_->setValue(minimum);
  label_->show();
  meter_->show();
}

void StatusArea::moveProgress(int position) {
  moveBar(*meter_, position);
}

void StatusArea::endProgress() {
  label_->hide();
  meter_->hide();
}

}  // namespace tarn::host
