// Forms, tasks and progress in windows.
#pragma once

#include <QPointer>
#include <functional>

#include "host/editor/operationview.h"

class QDialog;
class QWidget;

namespace tarn::host {

class ProgressPart;
class ProgressWindow;
class TaskWindow;

class OperationWindows final : public OperationView {
 public:
  struct Hooks {
    std::function<QWidget*()> parent;  ///< the window that they stand before
    std::function<void()> cancel;      ///< the user wants the operation to stop
    std::function<bool()> cancelWanted;
    std::function<void()> forgetCancel;    ///< what comes next is not to stop
    std::function<void()> pump;            ///< lets the windows paint, when it is time to
    std::function<void(QWidget*)> opened;  ///< takes input while the host computes; null: none
    std::function<void()> stateChanged;    ///< of isAsking()
  };
  explicit OperationWindows(Hooks hooks);
  ~OperationWindows() override;

  bool askForm(TarnForm& form) override;
  std::vector<std::string> chooseFromListing(const TarnListing& listing) override;
  void beginTasks(const std::string& title, const std::vector<std::string>& tasks) override;
  void setTask(size_t task, TarnTaskState state, const std::string& text) override;
  void endTasks(const std::string& report) override;
  void beginProgress(const std::string& label, int minimum, int maximum) override;
  void moveProgress(int position) override;
  void endProgress() override;

  /// True while a window waits for the user.
  bool isAsking() const { return asking_; }

  /// Makes what progress is shown in beforehand, so that it costs no operation anything.
  void prepare();
  /// Brings times and windows up to date; called while the host computes.
  void tick();

 private:
  ProgressPart* part();
  bool ask(QDialog& dialog);

  Hooks hooks_;
  QPointer<ProgressWindow> progress_;  ///< made once
  bool running_ = false;               ///< in the window of its own
  QPointer<TaskWindow> tasks_;
  bool asking_ = false;
};

}  // namespace tarn::host
