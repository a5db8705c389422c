// Forms, listings, tasks and progress of the host interface: in windows where the front end has
// them, else on the command line.
#include "host/editor/commandlineforms.h"
#include "host/editor/commandlinelisting.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/operationview.h"
#include "host/editor/progressmeter.h"
#include "host/editor/regenerator.h"
#include "host/editor/sysvars.h"
#include "tarnform.h"
#include "tarnhost.h"

using tarn::host::HostApp;
using tarn::host::OperationView;
using tarn::host::ProgressMeter;

namespace {

OperationView* view() {
  HostApp* app = HostApp::instance();
  return app != nullptr ? app->frontEnd().operations() : nullptr;
}

std::vector<std::string>& namesOfTasks() {
  static std::vector<std::string> names;
  return names;
}

ProgressMeter& meter() {
  static ProgressMeter meter;
  return meter;
}

const char* wordOf(TarnTaskState state) {
  switch (state) {
    case TarnTaskState::kDone:
      return "done";
    case TarnTaskState::kSkipped:
      return "skipped";
    case TarnTaskState::kFailed:
      return "failed";
    default:
      return "";
  }
}

/// A sentence about a task stands beside its name and need not begin with it.
std::string remarkOf(const std::string& task, const std::string& text) {
  const std::string start = task + ": ";
  return text.compare(0, start.size(), start) == 0 ? text.substr(start.size()) : text;
}

}  // namespace

bool tarnHostAskForm(TarnForm& form) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return false;
  if (view() != nullptr && app->variables().shortOf("FILEDIA") != 0) return view()->askForm(form);
  return tarn::host::askFormOnCommandLine(*app, form);
}

std::vector<std::string> tarnHostChooseFromListing(const TarnListing& listing) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return {};
  if (view() != nullptr && app->variables().shortOf("FILEDIA") != 0)
    return view()->chooseFromListing(listing);
  return tarn::host::chooseFromListingOnCommandLine(*app, listing);
}

void tarnHostBeginTasks(const std::string& title, const std::vector<std::string>& tasks) {
  namesOfTasks() = tasks;
  if (OperationView* shown = view()) return shown->beginTasks(title, tasks);
  if (HostApp* app = HostApp::instance()) app->print("\n" + title + "\n");
}

void tarnHostSetTask(size_t task, TarnTaskState state, const std::string& text) {
  if (task >= namesOfTasks().size()) return;
  const std::string remark = remarkOf(namesOfTasks()[task], text);
  if (OperationView* shown = view()) return shown->setTask(task, state, remark);
  HostApp* app = HostApp::instance();
  const std::string word = wordOf(state);
  if (app == nullptr || word.empty()) return;
  app->print("\n" + namesOfTasks()[task] + ": " + word + (remark.empty() ? "" : ": " + remark) +
             "\n");
}

void tarnHostEndTasks(const std::string& report) {
  if (OperationView* shown = view()) return shown->endTasks(report);
  if (HostApp* app = HostApp::instance()) app->print("\n" + report + "\n");
}

void tarnHostBeginProgress(const std::string& label, int minimum, int maximum) {
  meter().begin(label, minimum, maximum);
  const ProgressMeter::Call call(meter());
  if (OperationView* shown = view()) return shown->beginProgress(label, minimum, maximum);
  if (HostApp* app = HostApp::instance()) app->frontEnd().progressBegin(label, minimum, maximum);
}

void tarnHostMoveProgress(int position) {
  meter().move(position);
  const ProgressMeter::Call call(meter());
  if (OperationView* shown = view()) return shown->moveProgress(position);
  if (HostApp* app = HostApp::instance()) app->frontEnd().progressMove(position);
}

void tarnHostEndProgress() {
  HostApp* app = HostApp::instance();
  const std::string measured = meter().end();
  if (OperationView* shown = view()) {
    shown->endProgress();
  } else if (app != nullptr) {
    app->frontEnd().progressEnd();
  }
  const bool isWanted = app != nullptr && app->regenerator().hasStatistics();
  if (isWanted && !measured.empty()) app->print("\n" + measured + "\n");
}

bool tarnHostCancelWanted() {
  HostApp* app = HostApp::instance();
  const ProgressMeter::Call call(meter());
  return app != nullptr && app->frontEnd().cancelWanted();
}
