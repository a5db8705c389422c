#include "_image/rectify/modekeys.h"

#include <QAbstractButton>
#include <QKeyEvent>

#include <algorithm>

namespace tarn::image {
namespace {

/// 1 forwards, -1 backwards, 0 for other keys.
int stepOf(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return 0;
  switch (static_cast<const QKeyEvent&>(event).key()) {
    case Qt::Key_Down:
    case Qt::Key_Right:
      return 1;
    case Qt::Key_Up:
    case Qt::Key_Left:
      return -1;
    default:
      return 0;
  }
}

}  // namespace

ModeKeys::ModeKeys(const std::vector<QAbstractButton*>& buttons, QObject* parent)
    : QObject(parent), m_buttons(buttons) {
  for (QAbstractButton* button : m_buttons) button->installEventFilter(this);
}

bool ModeKeys::eventFilter(QObject* watched, QEvent* event) {
  const int step = stepOf(*event);
  const auto at = std::find(m_buttons.begin(), m_buttons.end(), watched);
  if (step == 0 || at == m_buttons.end()) return QObject::eventFilter(watched, event);
  const auto next = static_cast<std::ptrdiff_t>(at - m_buttons.begin()) + step;
  if (next >= 0 && next < static_cast<std::ptrdiff_t>(m_buttons.size())) {
    QAbstractButton* button = m_buttons[static_cast<size_t>(next)];
    button->setChecked(true);
    button->setFocus(Qt::TabFocusReason);
  }
  return true;
}

}  // namespace tarn::image
