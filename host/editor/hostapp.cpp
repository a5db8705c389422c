#include "host/editor/hostapp.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <cmath>
#include <optional>
#include <set>

#include "accmd.h"
#include "base/file.h"
#include "base/text.h"
#include "host/database/textmeasure.h"
#include "host/editor/autosave.h"
#include "host/editor/clipboard.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documentpicture.h"
#include "host/editor/documents.h"
#include "host/editor/editorobject.h"
#include "host/editor/editorui.h"
#include "host/editor/frontend.h"
#include "host/editor/hostcommands.h"
#include "host/editor/hostservices.h"
#include "host/editor/profile.h"
#include "host/editor/regenerator.h"
#include "host/editor/sysvars.h"
#include "host/editor/windowmessages.h"
#include "host/graphics/renderer.h"
#include "host/graphics/textoutlines.h"
#include "host/rx/classwatch.h"
#include "host/rx/message.h"
#include "host/ui/uiservices.h"

namespace tarn::host {

namespace {

constexpr double kExtentsMargin = 0.01;

HostApp*& current() {
  static HostApp* app = nullptr;
  return app;
}

}  // namespace

struct HostApp::Parts {
  Parts(HostApp& app, FrontEnd& front, UiBackend& backend, const std::string& folder)
      : frontEnd(front),
        profile(folder),
        services(profile),
        documents(app),
        variables(app),
        commands(app),
        regenerator(app),
        ui(app, backend),
        autosave(app) {}

  FrontEnd& frontEnd;
  Profile profile;
  HostServices services;
  Documents documents;
  SystemVariables variables;
  CommandProcessor commands;
  Regenerator regenerator;
  EditorUi ui;
  Clipboard clipboard;
  AutoSave autosave;
  RenderStyle style;
  bool quit = false;
};

HostApp::HostApp(FrontEnd& frontEnd, UiBackend& ui, const std::string& profileFolder)
    : parts_(std::make_unique<Parts>(*this, frontEnd, ui, profileFolder)) {
  current() = this;
  acdbSetHostApplicationServices(&parts_->services);
  setTextMeasure(&measuredTextWidth);
  enterEditorObject();
  installUiServices({&parts_->ui, [this](const std::wstring& text) { queueInput(toUtf8(text)); },
                     [this] { parts_->frontEnd.focusCommandLine(); },
                     [this] {
                       return parts_->profile.locale() == "ENU" ? TarnLanguage::kEnglish
                                                                : TarnLanguage::kChinese;
                     }});
  setMessageSink([this](std::wstring_view text) { print(toUtf8(text)); });
  registerHostCommands();
  setClassWatch([this] { parts_->documents.bindRegisteredClasses(); });
  parts_->documents.create();
}

HostApp::~HostApp() {
  setClassWatch({});
  parts_->documents.closeAll();
  removeHostCommands();
  setMessageSink({});
  installUiServices({});
  acdbSetHostApplicationServices(nullptr);
  current() = nullptr;
}

HostApp* HostApp::instance() {
  return current();
}

bool HostApp::runLine(const std::string& line) {
  return parts_->commands.runTyped(line);
}
void HostApp::queueInput(const std::string& text) {
  parts_->commands.queue(text);
}
bool HostApp::runQueued() {
  return parts_->commands.runQueued();
}
bool HostApp::hasQueued() const {
  return parts_->commands.hasQueued();
}

bool HostApp::runWithFiles(const std::string& command, const std::vector<std::string>& files) {
  parts_->ui.answerFilesWith(files);
  const bool done = runLine(command);
  parts_->ui.forgetAnswers();
  return done;
}

bool HostApp::filesGiven() const {
  return parts_->ui.hasAnswers();
}

void HostApp::playScript(bool playing) {
  parts_->ui.playScript(playing);
}

bool HostApp::commandActive() const {
  return parts_->commands.isActive();
}
std::string HostApp::commandNames() const {
  return parts_->commands.activeNames();
}
const std::string& HostApp::lastCommand() const {
  return parts_->commands.lastCommand();
}
const std::vector<std::string>& HostApp::commandHistory() const {
  return parts_->commands.history();
}
std::vector<std::string> HostApp::commandsBeginningWith(const std::string& start) const {
  AcArray<AcEdCommand*> commands;
  acedRegCmds->getCommands(nullptr, commands);
  std::set<std::string> names;
  for (const AcEdCommand* command : commands) {
    const std::string name = toUtf8(command->localName());
    if (equalsIgnoreCase(std::string_view(name).substr(0, start.size()), start)) names.insert(name);
  }
  return {names.begin(), names.end()};
}

int HostApp::failedCommands() const {
  return parts_->commands.failures();
}
bool HostApp::quitRequested() const {
  return parts_->quit;
}

void HostApp::requestQuit() {
  editorObject().notifyQuit();
  parts_->quit = true;
  parts_->frontEnd.quitWanted();
}

ViewState HostApp::view() const {
  return parts_->documents.current().space().view();
}

namespace {

/// `wanted` with the pixels of `now`; nothing when it is no view.
std::optional<ViewState> acceptedView(const ViewState& wanted, const ViewState& now) {
  if (!std::isfinite(wanted.centerX + wanted.centerY + wanted.twist) || !(wanted.height > 0) ||
      !std::isfinite(wanted.height)) {
    return std::nullopt;
  }
  ViewState view = wanted;
  view.pixelWidth = now.pixelWidth;
  view.pixelHeight = now.pixelHeight;
  return view;
}

}  // namespace

void HostApp::setView(const ViewState& view) {
  const auto accepted = acceptedView(view, this->view());
  if (!accepted) return;
  parts_->documents.current().changeView(*accepted);
  parts_->frontEnd.displayChanged();
  editorObject().notifyViewChanged();
}

void HostApp::moveTo(const ViewState& view) {
  const auto accepted = acceptedView(view, screenView());
  if (!accepted) return;
  parts_->documents.current().moveView(*accepted);
  parts_->frontEnd.displayChanged();
  editorObject().notifyViewChanged();
  parts_->frontEnd.regenerationWanted();
}

void HostApp::viewSettled() {
  HostDocument& document = parts_->documents.current();
  document.endGesture();
  // What a viewport shows stands in the drawing: a change of it by hand is a step of its own.
  if (!commandActive()) document.undo().endStep("VIEW");
}

void HostApp::resizeView(int pixelWidth, int pixelHeight) {
  if (pixelWidth <= 0 || pixelHeight <= 0) return;
  ViewState& view = parts_->documents.current().view();
  if (view.pixelWidth == pixelWidth && view.pixelHeight == pixelHeight) return;
  view.height *= static_cast<double>(pixelHeight) / view.pixelHeight;
  view.pixelWidth = pixelWidth;
  view.pixelHeight = pixelHeight;
  parts_->frontEnd.displayChanged();
  parts_->frontEnd.regenerationWanted();
}

void HostApp::zoomAt(PixelPoint pixel, double factor) {
  moveTo(zoomedAt(parts_->documents.current().space().mouseView(), pixel, factor));
}

void HostApp::panBy(double dx, double dy) {
  moveTo(pannedBy(parts_->documents.current().space().mouseView(), dx, dy));
}

bool HostApp::zoomExtents() {
  const GroundBox box = parts_->regenerator.extents(parts_->documents.current());
  if (box.isEmpty()) return false;
  setView(fittedTo(view(), box, kExtentsMargin));
  regenerateForView();
  return true;
}

bool HostApp::zoomPrevious() {
  if (!parts_->documents.current().previousView()) return false;
  editorObject().notifyViewChanged();
  regenerateForView();
  return true;
}

void HostApp::regenerate() {
  viewSettled();
  parts_->documents.current().temporaryVectors().lines.clear();
  parts_->regenerator.regenerate(parts_->documents.current());
  parts_->frontEnd.displayChanged();
  // Whoever draws over the picture draws again.
  if (!parts_->regenerator.isDrawing()) editorObject().notifyViewChanged();
  // A wish to stop was about this; commands see to theirs.
  if (!commandActive()) parts_->frontEnd.cancelHandled();
}

void HostApp::regenerateForView() {
  if (parts_->variables.shortOf("REGENMODE") == 1) return regenerate();
  viewSettled();
  parts_->frontEnd.displayChanged();
}

void HostApp::renderTo(QPainter& painter, int width, int height) const {
  const HostDocument& document = parts_->documents.current();
  renderDocument(painter, document, width, height, parts_->style);
  const TemporaryVectors& vectors = document.temporaryVectors();
  if (vectors.lines.empty() || vectors.key != document.space().viewKey()) return;
  ViewState view = document.space().mouseView();
  view.pixelWidth = width;
  view.pixelHeight = height;
  paintTemporaryVectors(painter, vectors, view);
}

std::string HostApp::savePicture(const std::string& path) const {
  const ViewState shown = screenView();
  QImage image(shown.pixelWidth, shown.pixelHeight, QImage::Format_RGB32);
  if (image.isNull()) return path + ": the picture does not fit into memory.";
  {
    QPainter painter(&image);
    renderTo(painter, shown.pixelWidth, shown.pixelHeight);
  }
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  QImageWriter writer(&bytes, "png");
  if (!writer.write(image)) return path + ": " + writer.errorString().toStdString() + ".";
  const QByteArray& data = bytes.data();
  return writeFileAtomically(path, {data.constData(), static_cast<size_t>(data.size())}).message();
}

void HostApp::setBackground(std::uint32_t rgb) {
  parts_->style.background = 0xff000000u | rgb;
  parts_->frontEnd.displayChanged();
}

void HostApp::dispatchWindowMessage(const MSG& message) {
  tellWatchers(message);
}

void HostApp::print(const std::string& utf8) {
  parts_->frontEnd.print(utf8);
}

AcApDocument* HostApp::currentDocument() const {
  return parts_->documents.curDocument();
}
std::string HostApp::documentTitle() const {
  return toUtf8(parts_->documents.current().docTitle());
}

void HostApp::setStatistics(bool on) {
  parts_->regenerator.setStatistics(on);
}

FrontEnd& HostApp::frontEnd() {
  return parts_->frontEnd;
}
UiBackend& HostApp::ui() {
  return parts_->ui;
}
Documents& HostApp::documents() {
  return parts_->documents;
}
CommandProcessor& HostApp::commands() {
  return parts_->commands;
}
SystemVariables& HostApp::variables() {
  return parts_->variables;
}
Profile& HostApp::profile() {
  return parts_->profile;
}
Regenerator& HostApp::regenerator() {
  return parts_->regenerator;
}
Clipboard& HostApp::clipboard() {
  return parts_->clipboard;
}
AutoSave& HostApp::autosave() {
  return parts_->autosave;
}

std::string formatPoint(double x, double y) {
  return formatDouble(x) + "," + formatDouble(y);
}

std::vector<std::string> LineAssembler::add(const std::string& text) {
  std::vector<std::string> lines;
  for (const char c : text) {
    if (c == '\r') continue;
    if (c != '\n') {
      open_ += c;
      continue;
    }
    if (!open_.empty()) lines.push_back(open_);
    open_.clear();
  }
  return lines;
}

std::vector<std::string> LineAssembler::flush() {
  return add("\n");
}

}  // namespace tarn::host
