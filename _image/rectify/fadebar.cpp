#include "_image/rectify/fadebar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include <algorithm>

#include "_image/binding/usesite.h"
#include "_image/rectify/dialogtext.h"
#include "inc/iconfigmanager.h"

namespace tarn::image {
namespace {

constexpr const char* kSetting = "纠正预览不透明度";
constexpr int kWhole = 100;
constexpr int kPage = 10;
constexpr int kSideMargin = 12;
constexpr int kShortest = 120;  ///< the slider
constexpr int kLongest = 360;

int storedPercent() {
  const auto config = makeObject<IConfigManager>(kRectifySite);
  if (config.isNull() || !config->contains(kSetting)) return kWhole;
  bool isNumber = false;
  const QString text = QString::fromStdString(config->getValue(kSetting).toString().str());
  const int percent = text.toInt(&isNumber);
  return isNumber ? std::clamp(percent, 0, kWhole) : kWhole;
}

void storePercent(int percent) {
  const auto config = makeObject<IConfigManager>(kRectifySite);
  if (!config.isNull()) config->setValue(kSetting, kel::DString(std::to_string(percent)));
}

}  // namespace

FadeBar::FadeBar(QWidget* parent)
    : QWidget(parent),
      m_label(new QLabel(this)),
      m_slider(new QSlider(Qt::Horizontal, this)),
      m_compare(new QPushButton(dialogText("只看图面", "Drawing only"), this)),
      m_stored(storedPercent()) {
  m_slider->setObjectName("previewOpacity");
  m_slider->setRange(0, kWhole);
  m_slider->setPageStep(kPage);
  m_slider->setValue(std::max(m_stored, kLeastAtStart));
  m_slider->setMinimumWidth(kShortest);
  m_slider->setMaximumWidth(kLongest);
  const QString help = dialogText("预览影像的不透明度；方向键、Home、End 也可调节",
                                  "How much is seen of the preview; arrows, Home and End work too");
  m_slider->setToolTip(help);
  m_slider->setAccessibleName(dialogText("预览不透明度", "Opacity of the preview"));
  m_slider->setAccessibleDescription(help);
  m_compare->setObjectName("compareView");
  m_compare->setCheckable(true);
  m_compare->setAutoDefault(false);
  m_compare->setToolTip(dialogText("收起对话框其余部分，以便对照图面；再按一次或按 Esc 恢复",
                                   "Folds the rest of the dialog away; press again, or Escape"));
  m_label->setBuddy(m_slider);
  setFocusProxy(m_slider);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(kSideMargin, 0, kSideMargin, 0);
  row->addWidget(m_label);
  row->addWidget(m_slider, 1);
  row->addWidget(m_compare);
  row->addStretch();
  showPercent();
  // As wide as it will ever be, so that the slider stands still.
  m_label->setMinimumWidth(m_label->fontMetrics().horizontalAdvance(m_label->text() + "00"));
  connect(m_slider, &QSlider::valueChanged, this, [this] {
    showPercent();
    emit opacityChanged(opacity());
  });
  connect(m_compare, &QPushButton::toggled, this, [this](bool isOn) {
    m_compare->setText(isOn ? dialogText("恢复对话框", "Whole dialog")
                            : dialogText("只看图面", "Drawing only"));
    emit comparing(isOn);
  });
  setActive(false);
}

FadeBar::~FadeBar() {
  if (m_slider->value() != std::max(m_stored, kLeastAtStart)) storePercent(m_slider->value());
}

double FadeBar::opacity() const {
  return m_slider->value() / static_cast<double>(kWhole);
}

void FadeBar::setActive(bool isActive) {
  m_slider->setEnabled(isActive);
  m_label->setEnabled(isActive);
}

void FadeBar::endComparing() {
  m_compare->setChecked(false);
}

void FadeBar::showPercent() {
  m_label->setText(dialogText("预览 %1%", "Preview %1%").arg(m_slider->value()));
}

}  // namespace tarn::image
