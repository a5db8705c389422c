#include "host/window/windowfrontend.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QLineEdit>
#include <utility>

#include "host/window/canvas.h"
#include "host/window/commandline.h"
#include "host/window/heldinput.h"
#include "host/window/operationwindows.h"
#include "host/window/plotdialog.h"
#include "host/window/statusarea.h"

namespace tarn::host {

namespace {

/// The longest that events are handled at a time, and after which queued input is looked at again.
constexpr qint64 kPumpMilliseconds = 30;
/// Long operations ask often; the window is painted and keys are looked for this seldom.
constexpr qint64 kLookMilliseconds = 100;
constexpr const char* kCommandPrompt = "Command:";

}  // namespace

struct WindowFrontEnd::Reader {
  std::string prompt;
  InputKind kind = InputKind::kToken;
  QEventLoop loop;
  std::optional<std::string> line;
  bool done = false;
};

WindowFrontEnd::WindowFrontEnd()
    : held_(std::make_unique<HeldInput>([this] { cancelWanted_ = true; })),
      operations_(std::make_unique<OperationWindows>(OperationWindows::Hooks{
          [this] { return canvas_ != nullptr ? canvas_->window() : nullptr; },
          [this] { cancelWanted_ = true; }, [this] { return cancelWanted(); },
          [this] { cancelHandled(); }, [this] { pumpSometimes(); },
          [this](QWidget* window) { held_->letThrough(window); }, [this] { tellState(); }})) {
  sincePump_.start();
  queueTimer_.setSingleShot(true);
  QObject::connect(&queueTimer_, &QTimer::timeout, [this] {
    if (hooks_.runQueued) hooks_.runQueued();
  });
}

WindowFrontEnd::~WindowFrontEnd() = default;

void WindowFrontEnd::attach(Canvas& canvas, CommandLine& line, StatusArea& status, Hooks hooks) {
  canvas_ = &canvas;
  line_ = &line;
  status_ = &status;
  hooks_ = std::move(hooks);
  showPrompt();
  print(std::exchange(early_, {}));
}

void WindowFrontEnd::prepare() {
  pump();
  operations_->prepare();
}

void WindowFrontEnd::detach() {
  canvas_ = nullptr;
  line_ = nullptr;
  status_ = nullptr;
  hooks_ = {};
}

void WindowFrontEnd::print(const std::string& text) {
  if (line_ == nullptr) {
    early_ += text;
    return;
  }
  const std::vector<std::string> whole = lines_.add(text);
  for (const std::string& one : whole) transcript_.line(one);
  line_->addLines(whole);
  line_->showOpenLine(lines_.open());
}

std::optional<std::string> WindowFrontEnd::readLine(const std::string& prompt, InputKind kind) {
  if (line_ == nullptr || closing_) return std::nullopt;
  if (std::optional<std::string> line = nextLine()) {
    print("\n" + prompt + *line + "\n");
    return line;
  }
  Reader reader;
  reader.prompt = prompt;
  reader.kind = kind;
  readers_.push_back(&reader);
  showPrompt();
  transcript_.waits(prompt);
  releaseHeldInput();
  while (!reader.done) reader.loop.exec();
  QCoreApplication::instance()->removeEventFilter(held_.get());
  held_->keepAll(false);
  readers_.pop_back();
  print("\n" + prompt + reader.line.value_or("") + "\n");
  showPrompt();
  return reader.line;
}

PlotChoice WindowFrontEnd::choosePlot(PlotJob& job) {
  if (closing_) return PlotChoice::kCancel;
  if (line_ == nullptr || !script_.empty()) return PlotChoice::kByPrompts;
  plans_ = true;
  tellState();
  const PlotChoice choice = PlotDialog(line_->window(), *HostApp::instance(), job).choose();
  plans_ = false;
  tellState();
  return choice;
}

void WindowFrontEnd::addLines(LineSource source) {
  script_.push_back(std::move(source));
}

std::optional<std::string> WindowFrontEnd::nextLine() {
  while (!script_.empty()) {
    if (auto line = script_.front()()) return line;
    script_.pop_front();
  }
  return std::nullopt;
}

void WindowFrontEnd::runLines(HostApp& app) {
  while (!closing_ && !app.quitRequested()) {
    const std::optional<std::string> line = nextLine();
    if (!line) return;
    if (line->empty() || line->front() == ';') continue;
    print("\nCommand: " + *line + "\n");
    app.runLine(*line);
  }
}

void WindowFrontEnd::showPrompt() {
  if (line_ == nullptr) return;
  line_->setPrompt(readers_.empty() ? kCommandPrompt : readers_.back()->prompt);
  tellState();
}

void WindowFrontEnd::commandAwaited() {
  transcript_.waits(kCommandPrompt);
  tellState();
  releaseHeldInput();
}

void WindowFrontEnd::tellState() {
  if (hooks_.stateChanged) hooks_.stateChanged();
}

bool WindowFrontEnd::asking() const {
  return plans_ || operations_->isAsking();
}

InputKind WindowFrontEnd::readingKind() const {
  return readers_.empty() ? InputKind::kCommand : readers_.back()->kind;
}

/// A view that was changed a moment ago settles while the command still waits: what the command
/// suspends stays suspended, and its end is not followed by one more regeneration.
void WindowFrontEnd::settleView() {
  if (!readers_.empty() && canvas_ != nullptr) canvas_->settleNow();
}

void WindowFrontEnd::give(const std::string& line) {
  settleView();
  if (readers_.empty()) return;
  endRead(line);
}

void WindowFrontEnd::cancelRead() {
  settleView();
  if (readers_.empty()) return;
  endRead(std::nullopt);
}

/// The loop ends after this turn; what else has come in the same turn is for the next question.
void WindowFrontEnd::endRead(std::optional<std::string> line) {
  Reader& reader = *readers_.back();
  reader.line = std::move(line);
  reader.done = true;
  held_->keepAll(true);
  QCoreApplication::instance()->installEventFilter(held_.get());
  reader.loop.quit();
}

void WindowFrontEnd::close() {
  closing_ = true;
  cancelWanted_ = true;
  for (Reader* reader : readers_) {
    reader->line.reset();
    reader->done = true;
    reader->loop.quit();
  }
}

void WindowFrontEnd::progressBegin(const std::string& label, int minimum, int maximum) {
  if (status_ == nullptr) return;
  status_->beginProgress(QString::fromStdString(label), minimum, maximum);
  pump();
}

void WindowFrontEnd::progressMove(int position) {
  if (status_ == nullptr) return;
  status_->moveProgress(position);
  pumpSometimes();
}

void WindowFrontEnd::progressEnd() {
  if (status_ != nullptr) status_->endProgress();
}

OperationView* WindowFrontEnd::operations() {
  return canvas_ != nullptr ? operations_.get() : nullptr;
}

bool WindowFrontEnd::cancelWanted() {
  pumpSometimes();
  return cancelWanted_;
}

void WindowFrontEnd::cancelHandled() {
  cancelWanted_ = closing_;
}

void WindowFrontEnd::pumpSometimes() {
  if (sincePump_.elapsed() >= kLookMilliseconds) pump();
}

void WindowFrontEnd::pump() {
  if (pumping_ || line_ == nullptr) return;
  pumping_ = true;
  tellState();
  operations_->tick();
  const bool keptAll = held_->keepAll(false);
  QCoreApplication::instance()->installEventFilter(held_.get());
  QCoreApplication::processEvents(QEventLoop::AllEvents, static_cast<int>(kPumpMilliseconds));
  held_->keepAll(keptAll);
  if (!keptAll) QCoreApplication::instance()->removeEventFilter(held_.get());
  pumping_ = false;
  sincePump_.restart();
}

void WindowFrontEnd::releaseHeldInput() {
  if (line_ != nullptr) held_->releaseTo(line_->input());
}

void WindowFrontEnd::displayChanged() {
  if (canvas_ != nullptr) canvas_->contentChanged();
}

void WindowFrontEnd::inputQueued() {
  queueTimer_.start(pumping_ ? static_cast<int>(kPumpMilliseconds) : 0);
}

void WindowFrontEnd::regenerationWanted() {
  if (canvas_ != nullptr) canvas_->settleLater();
}

void WindowFrontEnd::focusCommandLine() {
  if (line_ != nullptr) line_->input().setFocus();
}

void WindowFrontEnd::quitWanted() {
  if (hooks_.quit) hooks_.quit();
}

}  // namespace tarn::host
