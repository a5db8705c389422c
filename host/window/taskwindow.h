// A window with the list of tasks that run one after the other.
#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "tarnform.h"

class QDialogButtonBox;
class QLabel;
class QTreeWidget;

namespace tarn::host {

class ProgressPart;

class TaskWindow : public QDialog {
 public:
  /// `cancel` is called when the user wants the tasks to stop.
  TaskWindow(QWidget* parent, const std::string& title, const std::vector<std::string>& tasks,
             std::function<void()> cancel);

  ProgressPart& part() { return *part_; }
  void setTask(size_t task, TarnTaskState state, const std::string& text);
  /// Shows the report; from now on the window can be closed.
  void end(const std::string& report);
  void reject() override;

 private:
  std::function<void()> cancel_;
  QTreeWidget* list_;  ///< all four belong to the window
  ProgressPart* part_;
  QLabel* report_;
  QDialogButtonBox* buttons_;
  bool ended_ = false;
};

}  // namespace tarn::host
