#include "host/window/session.h"

#include <utility>

#include "base/text.h"
#include "host/editor/autosave.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/regenerator.h"
#include "host/graphics/viewstate.h"
#include "host/window/windowfrontend.h"

namespace tarn::host {

namespace {

constexpr int kCopyLookMs = 10000;

bool reachesBeyond(const GroundBox& box, const GroundBox& other) {
  return box.minX < other.minX || box.minY < other.minY || box.maxX > other.maxX ||
         box.maxY > other.maxY;
}

/// True when the view shows all of the box.
bool isWithin(const GroundBox& box, const ViewState& view) {
  for (const double x : {box.minX, box.maxX}) {
    for (const double y : {box.minY, box.maxY}) {
      const PixelPoint at = pixelFromGround(view, {x, y});
      if (at.x < 0 || at.y < 0 || at.x > view.pixelWidth || at.y > view.pixelHeight) return false;
    }
  }
  return true;
}

}  // namespace

Session::Session(HostApp& app, WindowFrontEnd& frontEnd, std::function<void()> closeWindow)
    : app_(app),
      frontEnd_(frontEnd),
      picker_(app, frontEnd, [this](const std::string& line) { run(line); }),
      closeWindow_(std::move(closeWindow)) {
  closeTimer_.setSingleShot(true);
  // Also while a command waits for input; a copy of what is there then is better than none.
  QObject::connect(&copyTimer_, &QTimer::timeout, [this] {
    if (mayAct()) app_.autosave().tick();
  });
  copyTimer_.start(kCopyLookMs);
  QObject::connect(&closeTimer_, &QTimer::timeout, [this] { closeWindow_(); });
}

bool Session::mayAct() const {
  return !frontEnd_.pumping() && (!app_.commandActive() || frontEnd_.reading());
}

bool Session::reading() const {
  return frontEnd_.reading();
}

bool Session::panWaits() const {
  const std::string names = app_.commandNames();
  return frontEnd_.reading() && frontEnd_.readingKind() == InputKind::kPoint &&
         equalsIgnoreCase(std::string_view(names).substr(names.rfind('\'') + 1), "PAN");
}

void Session::enter(const std::string& line) {
  if (!mayAct()) return;
  if (frontEnd_.reading()) {
    frontEnd_.give(line);
    return;
  }
  const std::string command = line.empty() ? app_.lastCommand() : line;
  app_.print("\nCommand: " + command + "\n");
  if (command.empty()) return;
  perform([this, command] { app_.runLine(command); });
}

void Session::escape() {
  if (!mayAct()) {
    frontEnd_.wantCancel();
  } else if (frontEnd_.reading()) {
    frontEnd_.cancelRead();
  } else {
    picker_.clear();
  }
}

void Session::run(const std::string& line) {
  perform([this, line] {
    app_.print("\nCommand: " + line + "\n");
    app_.runLine(line);
  });
}

void Session::look(const std::string& line) {
  if (!frontEnd_.reading()) return run(line);
  const InputKind kind = frontEnd_.readingKind();
  if (kind == InputKind::kText || kind == InputKind::kFileName) {
    app_.print("\nThe text comes first: end it with Enter, or Escape.\n");
  } else {
    frontEnd_.give("'" + line);
  }
}

void Session::openDrawings(const std::vector<std::string>& files) {
  for (const std::string& file : files) {
    perform([this, file] {
      app_.print("\nCommand: OPEN\n");
      app_.runWithFiles("OPEN", {file});
    });
  }
}

void Session::addImages(const std::vector<std::string>& files) {
  if (files.empty()) return;
  addBy([this, files] { app_.runWithFiles("addImage", files); });
}

void Session::chooseImages(std::function<void(bool begins)> around) {
  addBy([this, around = std::move(around)] {
    around(true);
    app_.runLine("addImage");
    around(false);
  });
}

/// What comes into an empty drawing comes into view; of what comes elsewhere it is said how to see
/// it.
void Session::addBy(std::function<void()> add) {
  perform([this, add = std::move(add)] {
    const auto extents = [this] { return app_.regenerator().extents(app_.documents().current()); };
    const GroundBox before = extents();
    app_.print("\nCommand: addImage\n");
    add();
    const GroundBox after = extents();
    if (before.isEmpty()) {
      if (!after.isEmpty()) app_.zoomExtents();
    } else if (reachesBeyond(after, before) && !isWithin(after, app_.view())) {
      app_.print("\nThe drawing reaches beyond this view: ZOOM E shows all of it.\n");
    }
  });
}

void Session::runQueued() {
  // A running command sees to it itself when it ends.
  if (working_ || app_.commandActive() || !app_.hasQueued()) return;
  if (frontEnd_.pumping()) {
    frontEnd_.inputQueued();
  } else {
    perform([this] { app_.runQueued(); });
  }
}

void Session::acted() {
  if (!mayAct()) return;
  if (working_ || app_.commandActive()) {
    frontEnd_.releaseHeldInput();
  } else {
    runNext();
  }
}

bool Session::requestClose() {
  if (quitAsked_) return false;
  if (!closeAsked_ && !app_.documents().unsaved().empty()) {
    quitAsked_ = true;
    if (!mayAct()) frontEnd_.wantCancel();
    perform([this] {
      app_.print("\nCommand: QUIT\n");
      app_.runLine("QUIT");
      quitAsked_ = false;
    });
    return false;
  }
  closeAsked_ = true;
  waiting_.clear();
  const bool isIdle = !working_ && !app_.commandActive() && !frontEnd_.pumping();
  if (isIdle && !frontEnd_.reading()) return true;
  frontEnd_.close();
  // A module's dialog asks outside of all commands; nothing but this goes on when it has its
  // answer.
  if (isIdle) closeTimer_.start(0);
  return false;
}

void Session::perform(std::function<void()> work) {
  if (closeAsked_) return;
  waiting_.push_back(std::move(work));
  if (working_ || app_.commandActive() || frontEnd_.pumping()) {
    // The command that waits for input ends in an outer call, which then goes on with this.
    if (mayAct()) frontEnd_.cancelRead();
    return;
  }
  runNext();
}

void Session::runNext() {
  working_ = true;
  frontEnd_.tellState();
  while (!waiting_.empty() && !closeAsked_) {
    const auto work = std::move(waiting_.front());
    waiting_.erase(waiting_.begin());
    work();
  }
  working_ = false;
  finish();
}

void Session::finish() {
  if (closeAsked_ || app_.quitRequested()) {
    closeAsked_ = true;
    // A window that is just being asked whether it may close does not hear of it a second time.
    closeTimer_.start(0);
    return;
  }
  frontEnd_.commandAwaited();
}

}  // namespace tarn::host
