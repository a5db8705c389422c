#include "host/window/heldinput.h"

#include <QCoreApplication>

namespace tarn::host {

void HeldInput::releaseTo(QObject& target) {
  for (const QKeyEvent& key : keys_) {
    QCoreApplication::postEvent(&target, new QKeyEvent(key));  // owned by the queue
  }
  keys_.clear();
}

bool HeldInput::eventFilter(QObject*, QEvent* event) {
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
