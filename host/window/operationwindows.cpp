#include "host/window/operationwindows.h"

#include "host/window/formdialog.h"
#include "host/window/progresspart.h"
#include "host/window/progresswindow.h"
#include "host/window/taskwindow.h"

namespace tarn::host {

namespace {

// What is over sooner gets no window.
constexpr qint64 kShownAfterMilliseconds = 300;

}  // namespace

OperationWindows::OperationWindows(Hooks hooks) : hooks_(std::move(hooks)) {}

OperationWindows::~OperationWindows() {
  delete progress_;
  delete tasks_;
}

bool OperationWindows::askForm(TarnForm& form) {
  FormDialog dialog(hooks_.parent(), form);
  return dialog.exec() == QDialog::Accepted;
}

void OperationWindows::beginTasks(const std::string& title, const std::vector<std::string>& tasks) {
  delete tasks_;
  tasks_ = new TaskWindow(hooks_.parent(), title, tasks, hooks_.cancel);
  tasks_->show();
  hooks_.opened(tasks_);
  hooks_.pump();
}

void OperationWindows::setTask(size_t task, TarnTaskState state, const std::string& text) {
  if (tasks_) tasks_->setTask(task, state, text);
  hooks_.pump();
}

void OperationWindows::endTasks(const std::string& report) {
  if (!tasks_) return;
  hooks_.opened(nullptr);
  tasks_->end(report);
  tasks_->exec();
  delete tasks_;
}

ProgressPart* OperationWindows::part() {
  if (tasks_) return &tasks_->part();
  return progress_ ? &progress_->part() : nullptr;
}

void OperationWindows::beginProgress(const std::string& label, int minimum, int maximum) {
  if (!tasks_ && !progress_) progress_ = new ProgressWindow(hooks_.parent(), hooks_.cancel);
  part()->begin(QString::fromStdString(label), minimum, maximum);
  hooks_.pump();
}

void OperationWindows::moveProgress(int position) {
  if (part() != nullptr) part()->move(position);
  hooks_.pump();
}

void OperationWindows::endProgress() {
  if (!progress_) return;
  hooks_.opened(nullptr);
  delete progress_;
}

void OperationWindows::tick() {
  if (part() == nullptr) return;
  part()->tick();
  const bool late = progress_ && !progress_->isVisible() &&
                    progress_->part().milliseconds() >= kShownAfterMilliseconds;
  if (!late) return;
  progress_->show();
  hooks_.opened(progress_);
}

}  // namespace tarn::host
