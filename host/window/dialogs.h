// Message boxes and file dialogs as windows.
#pragma once

#include <QPointer>
#include <QWidget>

#include "host/ui/uibackend.h"

namespace tarn::host {

class DialogBackend final : public UiBackend {
 public:
  /// The window that boxes and dialogs stand before; not owned, may go away.
  void setParent(QWidget* parent) { parent_ = parent; }

  int messageBox(const std::string& text, const std::string& caption, unsigned type) override;
  size_t choose(const std::string& question, const std::vector<std::string>& answers,
                size_t standard) override;
  std::optional<std::vector<std::string>> fileNames(const FileRequest& request) override;

 private:
  QPointer<QWidget> parent_;
  QString folder_;  ///< where the last files were chosen
};

}  // namespace tarn::host
