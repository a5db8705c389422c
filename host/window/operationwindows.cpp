#include "host/window/operationwindows.h"

#include <QPainter>

#include "host/editor/hostapp.h"
#include "host/window/formdialog.h"
#include "host/window/listingdialog.h"
#include "host/window/listingmap.h"
#include "host/window/progresspart.h"
#include "host/window/progresswindow.h"
#include "host/window/taskwindow.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

// What is over sooner gets no window; it is looked after ten times a second.
constexpr qint64 kShownAfterMilliseconds = 400;

/// The drawing as the screen shows it, no larger than a map needs.
void showDrawing(HostApp& app, ListingMap& map) {
  constexpr int kMostPixels = 1600;
  const ViewState view = app.mouseView();
  const QSize whole(view.pixelWidth, view.pixelHeight);
  const QSize size = whole.boundedTo(whole.scaled(kMostPixels, kMostPixels, Qt::KeepAspectRatio));
  QImage picture(size, QImage::Format_RGB32);
  if (picture.isNull()) return;
  {
    QPainter painter(&picture);
    app.renderTo(painter, size.width(), size.height());
  }
  map.setDrawing(picture, view);
}

}  // namespace

OperationWindows::OperationWindows(Hooks hooks) : hooks_(std::move(hooks)) {}

OperationWindows::~OperationWindows() {
  delete progress_;
  delete tasks_;
}

bool OperationWindows::ask(QDialog& dialog) {
  asking_ = true;
  hooks_.stateChanged();
  const bool isAccepted = dialog.exec() == QDialog::Accepted;
  asking_ = false;
  hooks_.stateChanged();
  return isAccepted;
}

bool OperationWindows::askForm(TarnForm& form) {
  FormDialog dialog(hooks_.parent(), form);
  return ask(dialog);
}

std::vector<std::string> OperationWindows::chooseFromListing(const TarnListing& listing) {
  ListingDialog dialog(hooks_.parent(), listing,
                       {hooks_.opened, hooks_.cancel, hooks_.forgetCancel, hooks_.cancelWanted});
  if (HostApp* app = HostApp::instance()) showDrawing(*app, dialog.map());
  if (!ask(dialog)) return {};
  return dialog.chosen();
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
  ask(*tasks_);
  delete tasks_;
}

ProgressPart* OperationWindows::part() {
  if (tasks_) return &tasks_->part();
  return running_ && progress_ ? &progress_->part() : nullptr;
}

void OperationWindows::prepare() {
  // One of another language is made anew.
  if (progress_ && progress_->windowTitle() == words("Working")) return;
  delete progress_;
  progress_ = new ProgressWindow(hooks_.parent(), hooks_.cancel);
  progress_->prepare();
}

void OperationWindows::beginProgress(const std::string& label, int minimum, int maximum) {
  if (!tasks_) {
    prepare();
    running_ = true;
  }
  part()->begin(QString::fromStdString(label), minimum, maximum);
  hooks_.pump();
}

void OperationWindows::moveProgress(int position) {
  if (part() != nullptr) part()->move(position);
  hooks_.pump();
}

void OperationWindows::endProgress() {
  if (!running_) return;
  running_ = false;
  hooks_.opened(nullptr);
  if (progress_) progress_->hide();
}

void OperationWindows::tick() {
  if (part() == nullptr) return;
  part()->tick();
  const bool late = running_ && progress_ && !progress_->isVisible() &&
                    progress_->part().milliseconds() >= kShownAfterMilliseconds;
  if (!late) return;
  part()->refresh();
  progress_->show();
  hooks_.opened(progress_);
}

}  // namespace tarn::host
