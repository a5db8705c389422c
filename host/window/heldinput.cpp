#include "host/window/heldinput.h"

#include <QCoreApplication>
#include <QWindow>

namespace tarn::host {

void HeldInput::releaseTo(QObject& target) {
  for (const QKeyEvent& key : keys_) {
    QCoreApplication::postEvent(&target, new QKeyEvent(key));  // owned by the queue
  }
  keys_.clear();
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
      if (key.key() == Qt::Key_Escape) {
        escape_();
      } else {
        keys_.push_back(key);
      }
      return true;
    }
    case QEvent::ShortcutOverride:
      // Accepted: no shortcut of the menus runs now, the key comes as a key press.
      event->accept();
      return true;
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
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
