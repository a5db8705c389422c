// Bars and panes of the host as widgets.
#pragma once

#include <QDockWidget>
#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <memory>

#include "host/ui/windowviews.h"

namespace tarn::host {

class WindowSystemOfWidgets final : public WindowSystem {
 public:
  /// Runs what calls the host, at once or as soon as nothing else runs.
  using Perform = std::function<void(std::function<void()>)>;

  /// The window that bars dock at; views of a window that went away show nothing.
  void attach(QMainWindow* frame, Perform perform);

  std::unique_ptr<DockView> makeDock(const std::wstring& key, DockEvents& events) override;
  std::unique_ptr<WindowView> makePane(WindowView& parent, CWnd& window) override;
  std::unique_ptr<TreeView> makeTree(WindowView& parent, CTreeCtrl& tree) override;

  void perform(std::function<void()> work) const {
    if (perform_) perform_(std::move(work));
  }

 private:
  QPointer<QMainWindow> frame_;
  Perform perform_;
};

/// A view that is one widget. Geometry is in the widgets' own pixels.
template <typename Base>
class WidgetView : public Base {
 public:
  explicit WidgetView(QWidget* widget) : widget_(widget) {}
  ~WidgetView() override { delete widget_.data(); }
  WidgetView(const WidgetView&) = delete;
  WidgetView& operator=(const WidgetView&) = delete;

  QWidget* widget() const { return widget_; }
  void setVisible(bool visible) override {
    if (widget_) widget_->setVisible(visible);
  }
  void setGeometry(const RECT& rect) override {
    if (widget_)
      widget_->setGeometry(rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
  }
  POINT origin() const override {
    const QPoint corner = widget_ ? widget_->mapToGlobal(QPoint(0, 0)) : QPoint();
    return {corner.x(), corner.y()};
  }
  void setFocus() override {
    if (widget_) widget_->setFocus();
  }
  void acceptFiles(bool accept) override {
    if (widget_) widget_->setAcceptDrops(accept);
  }

 private:
  QPointer<QWidget> widget_;
};

/// The widget that children of a view stand in; null when it is gone.
QWidget* contentOf(const WindowView& view);

std::unique_ptr<TreeView> makeTreeWidget(const WindowSystemOfWidgets& system, QWidget* parent,
                                         CTreeCtrl& tree);

}  // namespace tarn::host
