#include "host/window/keyboardways.h"

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QShortcut>
#include <QTabBar>
#include <algorithm>

namespace tarn::host {

namespace {

/// The first that takes the keyboard, of a whole that may not do so itself.
QWidget* firstIn(QWidget* whole) {
  if (whole == nullptr || !whole->isVisible()) return nullptr;
  if ((whole->focusPolicy() & Qt::TabFocus) != 0 && whole->isEnabled()) return whole;
  for (QWidget* part = whole->nextInFocusChain(); part != nullptr && part != whole;
       part = part->nextInFocusChain()) {
    const bool isUsable = whole->isAncestorOf(part) && part->isVisible() && part->isEnabled();
    if (isUsable && (part->focusPolicy() & Qt::TabFocus) != 0) return part;
  }
  return nullptr;
}

const QDockWidget* dockOf(const QWidget* part) {
  while (part != nullptr && qobject_cast<const QDockWidget*>(part) == nullptr) {
    part = part->parentWidget();
  }
  return static_cast<const QDockWidget*>(part);
}

void turn(QTabBar& tabs, int by) {
  const int count = tabs.count();
  if (count > 1) tabs.setCurrentIndex((tabs.currentIndex() + by + count) % count);
}

}  // namespace

KeyboardWays::KeyboardWays(QMainWindow& window, QWidget& home, QWidget& text, QTabBar& drawings,
                           QTabBar& sheets)
    : window_(window), home_(home), text_(text) {
  addKey("F6", [this] { goOn(1); });
  addKey("Shift+F6", [this] { goOn(-1); });
  addKey("Ctrl+Tab", [bar = &drawings] { turn(*bar, 1); });
  addKey("Ctrl+Shift+Tab", [bar = &drawings] { turn(*bar, -1); });
  addKey("Ctrl+PgDown", [bar = &sheets] { turn(*bar, 1); });
  addKey("Ctrl+PgUp", [bar = &sheets] { turn(*bar, -1); });
}

void KeyboardWays::addKey(const char* keys, const std::function<void()>& act) {
  auto* made = new QShortcut(QKeySequence(keys), &window_);  // the window's
  QObject::connect(made, &QShortcut::activated, this, act);
}

std::vector<QWidget*> KeyboardWays::parts() const {
  std::vector<QWidget*> all = {&home_, &text_};
  for (QDockWidget* dock : window_.findChildren<QDockWidget*>()) {
    if (QWidget* first = firstIn(dock->widget())) all.push_back(first);
  }
  return all;
}

void KeyboardWays::goOn(int by) const {
  const std::vector<QWidget*> all = parts();
  const QWidget* now = QApplication::focusWidget();
  const auto holds = [now](const QWidget* part) {
    const QDockWidget* dock = dockOf(part);
    return now != nullptr && (part == now || (dock != nullptr && dock->isAncestorOf(now)));
  };
  const auto at = std::find_if(all.begin(), all.end(), holds);
  const auto count = static_cast<int>(all.size());
  const int from = at == all.end() ? 0 : static_cast<int>(at - all.begin());
  QWidget* next = all[static_cast<size_t>((from + by + count) % count)];
  // A dock that floats is a window of its own.
  next->window()->activateWindow();
  next->setFocus(Qt::ShortcutFocusReason);
}

}  // namespace tarn::host
