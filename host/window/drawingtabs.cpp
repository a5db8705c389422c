#include "host/window/drawingtabs.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QToolButton>

#include "host/window/icons.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kCross = 12;

void prepare(QTabBar& bar, const char* name) {
  bar.setObjectName(name);
  bar.setExpanding(false);
  bar.setDrawBase(false);
  bar.setUsesScrollButtons(true);
  bar.setElideMode(Qt::ElideMiddle);
  // The keyboard stays with the command line; Ctrl+Tab and Ctrl+PgDown reach the tabs.
  bar.setFocusPolicy(Qt::NoFocus);
}

/// Brings the number of tabs to `count` without telling anybody.
void resizeTo(QTabBar& bar, int count) {
  while (bar.count() > count) bar.removeTab(bar.count() - 1);
  while (bar.count() < count) bar.addTab({});
}

void setText(QTabBar& bar, int index, const QString& text) {
  // An ampersand is a letter here.
  const QString shown = QString(text).replace('&', "&&");
  if (bar.tabText(index) != shown) bar.setTabText(index, shown);
}

}  // namespace

DrawingTabs::DrawingTabs(Hooks hooks) : hooks_(std::move(hooks)) {
  prepare(*this, "drawings");
  QObject::connect(this, &QTabBar::currentChanged, this, [this](int index) {
    if (!filling_) hooks_.chosen(index);
  });
}

/// The style's own cross cannot be seen on a dark window.
void DrawingTabs::addCross(int index) {
  auto* cross = new QToolButton(this);
  cross->setAutoRaise(true);
  cross->setFocusPolicy(Qt::NoFocus);
  cross->setIconSize(QSize(kCross, kCross));
  QObject::connect(cross, &QToolButton::clicked, this, [this, cross] {
    for (int i = 0; i < count(); ++i) {
      if (tabButton(i, QTabBar::RightSide) == cross) return hooks_.closed(i);
    }
  });
  setTabButton(index, QTabBar::RightSide, cross);
}

void DrawingTabs::speakAgain() {
  setAccessibleName(words("Open drawings"));
  for (int i = 0; i < count(); ++i) {
    auto* cross = static_cast<QToolButton*>(tabButton(i, QTabBar::RightSide));
    cross->setIcon(makeIcon("cross", palette().color(QPalette::WindowText)));
    cross->setToolTip(words("Close this drawing"));
  }
}

void DrawingTabs::show(const std::vector<DrawingTab>& drawings, int current) {
  filling_ = true;
  const int before = count();
  resizeTo(*this, static_cast<int>(drawings.size()));
  for (int i = before; i < count(); ++i) addCross(i);
  if (before < count()) speakAgain();
  for (int i = 0; i < count(); ++i) {
    const DrawingTab& one = drawings[static_cast<size_t>(i)];
    setText(*this, i, one.title + (one.isModified ? "*" : ""));
    setTabToolTip(i, one.path);
  }
  setCurrentIndex(current);
  filling_ = false;
}

void DrawingTabs::mouseReleaseEvent(QMouseEvent* event) {
  const int index = tabAt(event->pos());
  if (event->button() == Qt::MiddleButton && index >= 0) return hooks_.closed(index);
  QTabBar::mouseReleaseEvent(event);
}

SheetTabs::SheetTabs(Hooks hooks) : hooks_(std::move(hooks)) {
  prepare(*this, "sheets");
  setShape(QTabBar::RoundedSouth);
  QObject::connect(this, &QTabBar::currentChanged, this, [this](int index) {
    if (!filling_ && index >= 0) hooks_.chosen(layouts_[static_cast<size_t>(index)]);
  });
}

void SheetTabs::show(const std::vector<std::string>& layouts, int current) {
  filling_ = true;
  setAccessibleName(words("Model and sheets"));
  layouts_ = layouts;
  resizeTo(*this, static_cast<int>(layouts.size()));
  for (int i = 0; i < count(); ++i) {
    setText(*this, i, QString::fromStdString(layouts[static_cast<size_t>(i)]));
  }
  setCurrentIndex(current);
  filling_ = false;
}

void SheetTabs::contextMenuEvent(QContextMenuEvent* event) {
  const int index = tabAt(event->pos());
  if (index >= 0) hooks_.menuWanted(layouts_[static_cast<size_t>(index)], event->globalPos());
}

}  // namespace tarn::host
