#include "host/window/dockview.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QResizeEvent>
#include <QUrl>
#include <utility>

#include "base/text.h"
#include "host/ui/windowinput.h"

namespace tarn::host {

namespace {

constexpr int kSmallest = 160;

Qt::DockWidgetArea areaOf(DockPlace place) {
  return place == DockPlace::kRight ? Qt::RightDockWidgetArea : Qt::LeftDockWidgetArea;
}

/// What a bar is filled with; its one child is the pane inside.
class DockContent final : public QWidget {
 public:
  explicit DockContent(DockEvents& events) : events_(events) {}

 protected:
  void resizeEvent(QResizeEvent* event) override {
    events_.resized(event->size().width(), event->size().height());
  }

 private:
  DockEvents& events_;
};

class Dock final : public QDockWidget {
 public:
  Dock(QMainWindow* frame, const WindowSystemOfWidgets& system, DockEvents& events)
      : QDockWidget(frame), system_(system), events_(events) {
    setWidget(new DockContent(events));
    widget()->setMinimumSize(kSmallest, kSmallest);
    QObject::connect(toggleViewAction(), &QAction::triggered, this,
                     [this](bool shown) { events_.visibleNow(shown); });
  }

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override {
    // The title only: what is inside has menus of its own.
    if (widget()->geometry().contains(event->pos())) return;
    const POINT at = {event->globalX(), event->globalY()};
    system_.perform([this, at] { events_.menuWanted(at); });
  }
  void closeEvent(QCloseEvent* event) override {
    QDockWidget::closeEvent(event);
    events_.visibleNow(false);
  }

 private:
  const WindowSystemOfWidgets& system_;
  DockEvents& events_;
};

class DockViewOfWidget final : public WidgetView<DockView> {
 public:
  DockViewOfWidget(QMainWindow* frame, Dock* dock) : WidgetView(dock), frame_(frame), dock_(dock) {}

  POINT origin() const override {
    const QPoint corner = dock_ ? dock_->widget()->mapToGlobal(QPoint(0, 0)) : QPoint();
    return {corner.x(), corner.y()};
  }
  void setTitle(const std::wstring& title) override {
    if (dock_) dock_->setWindowTitle(QString::fromStdWString(title));
  }
  void setVisible(bool visible) override {
    if (!dock_) return;
    dock_->setVisible(visible);
    if (visible) dock_->raise();
  }
  void setGeometry(const RECT& rect) override {
    if (dock_) dock_->resize(rect.right - rect.left, rect.bottom - rect.top);
  }
  void allowSides(bool left, bool right) override {
    Qt::DockWidgetAreas areas = Qt::NoDockWidgetArea;
    if (left) areas |= Qt::LeftDockWidgetArea;
    if (right) areas |= Qt::RightDockWidgetArea;
    if (dock_) dock_->setAllowedAreas(areas);
  }
  void dock(DockPlace place) override {
    if (!dock_ || !frame_) return;
    if (place == DockPlace::kFloating) {
      dock_->setFloating(true);
      return;
    }
    frame_->addDockWidget(areaOf(place), dock_);
    dock_->setFloating(false);
    dock_->show();
  }
  void restore(DockPlace place) override {
    if (!dock_ || !frame_ || frame_->restoreDockWidget(dock_)) return;
    const int width = dock_->width();
    dock(place);
    frame_->resizeDocks({dock_}, {width}, Qt::Horizontal);
  }
  bool isFloating() const override { return dock_ && dock_->isFloating(); }

 private:
  QPointer<QMainWindow> frame_;
  QPointer<Dock> dock_;
};

/// A dialog inside a bar. Files may be dropped on it.
class Pane final : public QWidget {
 public:
  Pane(QWidget* parent, const WindowSystemOfWidgets& system, CWnd& window)
      : QWidget(parent), system_(system), window_(window) {}

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
  }
  void dropEvent(QDropEvent* event) override {
    event->acceptProposedAction();
    std::vector<std::string> files;
    for (const QUrl& url : event->mimeData()->urls()) {
      if (url.isLocalFile()) files.push_back(url.toLocalFile().toStdString());
    }
    const QPointer<Pane> alive(this);
    system_.perform([alive, files] {
      if (alive) dropFiles(alive->window_, files);
    });
  }

 private:
  const WindowSystemOfWidgets& system_;
  CWnd& window_;
};

/// A view whose window went away before it was made.
class NoView final : public WidgetView<WindowView> {
 public:
  NoView() : WidgetView(nullptr) {}
};

}  // namespace

QWidget* contentOf(const WindowView& view) {
  const auto* dock = dynamic_cast<const WidgetView<DockView>*>(&view);
  if (dock) {
    const auto* widget = dynamic_cast<QDockWidget*>(dock->widget());
    return widget ? widget->widget() : nullptr;
  }
  const auto* pane = dynamic_cast<const WidgetView<WindowView>*>(&view);
  return pane ? pane->widget() : nullptr;
}

void WindowSystemOfWidgets::attach(QMainWindow* frame, Perform perform) {
  frame_ = frame;
  perform_ = std::move(perform);
}

std::unique_ptr<DockView> WindowSystemOfWidgets::makeDock(const std::wstring& key,
                                                          DockEvents& events) {
  Dock* dock = frame_ ? new Dock(frame_, *this, events) : nullptr;
  if (dock) dock->setObjectName("bar:" + QString::fromStdWString(key));
  return std::make_unique<DockViewOfWidget>(frame_, dock);
}

std::unique_ptr<WindowView> WindowSystemOfWidgets::makePane(WindowView& parent, CWnd& window) {
  QWidget* around = contentOf(parent);
  if (!around) return std::make_unique<NoView>();
  return std::make_unique<WidgetView<WindowView>>(new Pane(around, *this, window));
}

std::unique_ptr<TreeView> WindowSystemOfWidgets::makeTree(WindowView& parent, CTreeCtrl& tree) {
  return makeTreeWidget(*this, contentOf(parent), tree);
}

}  // namespace tarn::host
