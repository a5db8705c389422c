#include "host/window/heldinput.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWindow>
#include <utility>

namespace tarn::host {

void HeldInput::releaseTo(QObject& target) {
  for (Kept& one : std::exchange(kept_, {})) {
    const bool isKey = one.event->type() == QEvent::KeyPress;
    QObject* receiver = isKey ? &target : one.receiver.data();
    if (receiver != nullptr) QCoreApplication::postEvent(receiver, one.event.release());
  }
}

void HeldInput::keep(QObject* watched, const QEvent& event) {
  Kept one;
  one.receiver = watched;
  if (event.type() == QEvent::KeyPress) {
    one.event = std::make_unique<QKeyEvent>(static_cast<const QKeyEvent&>(event));
  } else if (event.type() == QEvent::Wheel) {
    one.event = std::make_unique<QWheelEvent>(static_cast<const QWheelEvent&>(event));
  } else {
    one.event = std::make_unique<QMouseEvent>(static_cast<const QMouseEvent&>(event));
  }
  kept_.push_back(std::move(one));
}

bool HeldInput::isOpen(const QObject* watched) const {
  if (!open_) return false;
  if (watched == open_->windowHandle()) return true;
  return watched->isWidgetType() && static_cast<const QWidget*>(watched)->window() == open_;
}

bool HeldInput::eventFilter(QObject* watched, QEvent* event) {
  const bool escapes =
      event->type() == QEvent::KeyPress && static_cast<QKeyEvent&>(*event).key() == Qt::Key_Escape;
  if (!escapes && isOpen(watched)) return false;
  switch (event->type()) {
    case QEvent::KeyPress: {
      const auto& key = static_cast<QKeyEvent&>(*event);
      if (key.key() == Qt::Key_Escape && !keepsAll_) {
        escape_();
      } else {
        keep(watched, key);
      }
      return true;
    }
    case QEvent::ShortcutOverride:
      // Accepted: no shortcut of the menus runs now, the key comes as a key press.
      event->accept();
      return true;
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
      if (!keepsAll_) return false;
      keep(watched, *event);
      return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
      if (keepsAll_) keep(watched, *event);
      event->ignore();
      return true;
    case QEvent::KeyRelease:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      event->ignore();
      return true;
    default:
      return false;
  }
}

}  // namespace tarn::host
