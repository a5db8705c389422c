// Message boxes, file dialogs and menus as windows.
#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

#include "host/ui/uibackend.h"
#include "host/window/dockview.h"

namespace tarn::host {

class DialogBackend final : public UiBackend {
 public:
  /// The window that boxes and dialogs stand before; not owned, may go away.
  void setParent(QWidget* parent) { parent_ = parent; }

  /// Title and filter of dialogs for several files from now on, in place of their own; empty for
  /// their own again.
  void setImageFiles(const std::string& title, const std::string& filter) {
    imageTitle_ = title;
    imageFilter_ = filter;
  }

  /// Called when the first box, dialog or menu opens and when the last has gone.
  void setAsking(std::function<void()> asking) { asking_ = std::move(asking); }
  bool isAsking() const { return open_ > 0; }

  int messageBox(const std::string& text, const std::string& caption, unsigned type) override;
  size_t choose(const std::string& question, const std::vector<std::string>& answers,
                size_t standard) override;
  std::optional<std::vector<std::string>> fileNames(const FileRequest& request) override;
  std::optional<size_t> chosenKind() const override { return kind_; }
  UINT popupMenu(const MenuModel& menu, POINT screen) override;
  WindowSystemOfWidgets* windows() override { return &windows_; }

 private:
  class Asking;

  QPointer<QWidget> parent_;
  WindowSystemOfWidgets windows_;
  std::string imageTitle_;
  std::string imageFilter_;
  std::optional<size_t> kind_;
  QString folder_;  ///< where the last files were chosen
  std::function<void()> asking_;
  int open_ = 0;
};

}  // namespace tarn::host
