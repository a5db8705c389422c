#include "host/window/statusarea.h"

#include <QAction>
#include <QFontDatabase>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QToolButton>
#include <cmath>

#include "host/window/words.h"

#include "host/window/progresspart.h"

namespace tarn::host {

QString coordinateText(GroundPoint ground) {
  return QString::number(ground.x, 'f', 3) + ", " + QString::number(ground.y, 'f', 3);
}

QString scaleText(const ViewState& view, double dotsPerInch) {
  constexpr double kMetresPerInch = 0.0254;
  const double scale = view.unitsPerPixel() * dotsPerInch / kMetresPerInch;
  if (!(scale > 0) || !std::isfinite(scale)) return {};
  const double unit = std::pow(10, std::floor(std::log10(scale)) - 2);
  const double rounded = std::round(scale / unit) * unit;
  return rounded >= 100 ? "1 : " + QString::number(rounded, 'f', 0)
                        : "1 : " + QString::number(rounded, 'g', 3);
}

QString twistText(const ViewState& view) {
  constexpr double kDegree = 3.141592653589793 / 180;
  const double degrees = std::round(view.twist / kDegree * 100) / 100;
  return degrees == 0 ? QString() : QString::number(degrees, 'g', 6) + QChar(0xb0);
}

StatusArea::StatusArea()
    : state_(new QLabel(this)),
      label_(new QLabel(this)),
      meter_(new QProgressBar(this)),
      scale_(new QLabel(this)),
      twist_(new QLabel(this)),
      ground_(new QLabel(this)) {
  state_->setObjectName("state");
  label_->setObjectName("progressLabel");
  meter_->setObjectName("progress");
  scale_->setObjectName("scale");
  twist_->setObjectName("twist");
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
  for (QLabel* label : {twist_, scale_, ground_}) addPermanentWidget(label);
  endProgress();
  speakAgain();
}

void StatusArea::showState(const QString& text) {
  state_->setText(text);
}

void StatusArea::showGround(GroundPoint ground) {
  ground_->setText(coordinateText(ground));
}

void StatusArea::showView(const ViewState& view) {
  scale_->setText(scaleText(view, physicalDpiY() * devicePixelRatioF()));
  twist_->setText(twistText(view));
  twist_->setVisible(!twist_->text().isEmpty());
}

void StatusArea::speakAgain() {
  state_->setAccessibleName(words("What the program waits for"));
  meter_->setAccessibleName(words("Progress"));
  scale_->setToolTip(words("Scale on this screen, when a drawing unit is a metre"));
  twist_->setToolTip(words("Twist of the view"));
  ground_->setToolTip(words("Easting and northing under the mouse"));
  for (QLabel* label : {scale_, twist_, ground_}) label->setAccessibleName(label->toolTip());
}

void StatusArea::addSwitch(QAction& action, QMenu* menu) {
  auto* button = new QToolButton(this);
  button->setDefaultAction(&action);
  button->setToolButtonStyle(Qt::ToolButtonTextOnly);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::NoFocus);
  if (menu != nullptr) {
    menu->setParent(button, menu->windowFlags());
    button->setMenu(menu);
    button->setPopupMode(QToolButton::MenuButtonPopup);
  }
  insertPermanentWidget(2 + switches_++, button);
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
