// A window that shows one running operation.
#pragma once

#include <QDialog>
#include <functional>

namespace tarn::host {

class ProgressPart;

class ProgressWindow : public QDialog {
 public:
  /// `cancel` is called when the user wants the operation to stop.
  ProgressWindow(QWidget* parent, std::function<void()> cancel);

  ProgressPart& part() { return *part_; }
  /// Does beforehand what the first appearance would take time for.
  void prepare();
  void reject() override;

 private:
  std::function<void()> cancel_;
  ProgressPart* part_;  ///< belongs to the window
};

}  // namespace tarn::host
