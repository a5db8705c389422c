#include "host/window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSplitter>
#include <QToolBar>
#include <QUrl>

#include "host/editor/clipboard.h"
#include "host/editor/hostapp.h"
#include "host/window/canvas.h"
#include "host/window/commandline.h"
#include "host/window/dialogs.h"
#include "host/window/filefilters.h"
#include "host/window/icons.h"
#include "host/window/statusarea.h"
#include "host/window/windowfrontend.h"

namespace tarn::host {

namespace {

constexpr int kCommandLineHeight = 130;
constexpr const char* kImageFilter =
    "Images|*.tif;*.tiff;*.img;*.jpg;*.jpeg|TIFF|*.tif;*.tiff|IMG|*.img|JPEG|*.jpg;*.jpeg||";

std::vector<std::string> localFiles(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data.urls()) {
    paths.push_back((url.isLocalFile() ? url.toLocalFile() : url.toDisplayString()).toStdString());
  }
  return paths;
}

QString stateText(bool free, bool reading, InputKind kind) {
  if (!free) return "Working – Escape stops it";
  if (!reading) return "Ready";
  if (kind == InputKind::kSelect) return "Choose entities by clicks or a window – Enter ends";
  return kind == InputKind::kPoint ? "Click a point or type its coordinates – Escape cancels"
                                   : "The command waits for an input – Escape cancels";
}

}  // namespace

MainWindow::MainWindow(HostApp& app, WindowFrontEnd& frontEnd, DialogBackend& dialogs)
    : app_(app),
      frontEnd_(frontEnd),
      dialogs_(dialogs),
      session_(app, frontEnd, [this] { close(); }) {
  setAcceptDrops(true);
  buildCanvas();
  buildCommandLine();
  status_ = new StatusArea;
  setStatusBar(status_);
  buildMenus();
  auto* halves = new QSplitter(Qt::Vertical);
  halves->addWidget(canvas_);
  halves->addWidget(line_);
  halves->setStretchFactor(0, 1);
  halves->setCollapsible(0, false);
  halves->setHandleWidth(3);
  setCentralWidget(halves);
  resize(1280, 800);
  halves->setSizes({height(), kCommandLineHeight});
  canvas_->setFocusPolicy(Qt::ClickFocus);
  canvas_->setFocusProxy(line_);
  dialogs_.setParent(this);
  frontEnd_.attach(*canvas_, *line_, *status_,
                   {[this] { showState(); }, [this] { session_.runQueued(); },
                    [this] { session_.requestClose(); }});
  line_->setFocus();
}

MainWindow::~MainWindow() {
  frontEnd_.detach();
}

void MainWindow::buildCanvas() {
  Canvas::Hooks hooks;
  hooks.mayAct = [this] { return session_.mayAct(); };
  hooks.pressed = [this](GroundPoint ground) { session_.picker().press(ground); };
  hooks.released = [this](GroundPoint ground, bool dragged, bool shift) {
    session_.picker().release(ground, dragged, shift);
  };
  hooks.hovered = [this](GroundPoint ground) {
    session_.picker().hover(ground);
    status_->showGround(ground);
  };
  hooks.left = [this] { session_.picker().leave(); };
  hooks.paintOver = [this](QPainter& painter) {
    paintOverlay(painter, app_, session_.picker().pointer());
  };
  hooks.acted = [this] { session_.acted(); };
  hooks.nothingToShow = [this] { app_.print("\nThe drawing is empty.\n"); };
  canvas_ = new Canvas(app_, std::move(hooks));
}

void MainWindow::buildCommandLine() {
  CommandLine::Hooks hooks;
  hooks.entered = [this](const std::string& line) { session_.enter(line); };
  hooks.escaped = [this] { session_.escape(); };
  hooks.earlierLines = [this] { return app_.commandHistory(); };
  hooks.namesBeginningWith = [this](const std::string& start) {
    if (frontEnd_.reading() || start.empty()) return std::vector<std::string>();
    return app_.commandsBeginningWith(start);
  };
  hooks.pastesEntities = [this] { return app_.clipboard().drawing != nullptr; };
  line_ = new CommandLine(std::move(hooks));
}

void MainWindow::showState() {
  setWindowTitle("Tarn Image – " + QString::fromStdString(app_.documentTitle()));
  const bool free = session_.mayAct();
  status_->showState(stateText(free, frontEnd_.reading(), frontEnd_.readingKind()));
}

void MainWindow::buildMenus() {
  auto* tools = addToolBar("Tools");
  tools->setMovable(false);
  tools->setContextMenuPolicy(Qt::PreventContextMenu);
  fillFileMenu(*menuBar()->addMenu("&File"), *tools);
  fillEditMenu(*menuBar()->addMenu("&Edit"));
  fillViewMenu(*menuBar()->addMenu("&View"), *tools);
  fillHelpMenu(*menuBar()->addMenu("&Help"));
}

void MainWindow::fillFileMenu(QMenu& menu, QToolBar& tools) {
  const QColor ink = palette().color(QPalette::ButtonText);
  QAction* add = menu.addAction(makeIcon(IconKind::kAddImages, ink), "&Add images...", this,
                                [this] { chooseImages(); });
  add->setShortcut(QKeySequence::Open);
  QAction* save = menu.addAction(makeIcon(IconKind::kSavePicture, ink), "&Save picture...", this,
                                 [this] { savePicture(); });
  menu.addAction("&Plot", this, [this] { session_.run("PLOT"); })->setShortcut(QKeySequence::Print);
  menu.addSeparator();
  QAction* quit = menu.addAction("&Quit", this, [this] { close(); });
  quit->setShortcut(QKeySequence::Quit);
  tools.addAction(add);
  tools.addAction(save);
  tools.addSeparator();
}

void MainWindow::fillEditMenu(QMenu& menu) {
  const auto add = [&](const char* text, const QKeySequence& keys, const char* command) {
    menu.addAction(text, this, [this, command] { session_.run(command); })->setShortcut(keys);
  };
  add("&Undo", QKeySequence::Undo, "U");
  add("&Redo", QKeySequence::Redo, "REDO");
  menu.addSeparator();
  add("&Copy", QKeySequence::Copy, "COPYCLIP");
  add("&Paste", QKeySequence::Paste, "PASTECLIP");
  add("&Erase", QKeySequence::Delete, "ERASE");
}

void MainWindow::fillViewMenu(QMenu& menu, QToolBar& tools) {
  const QColor ink = palette().color(QPalette::ButtonText);
  const auto add = [&](IconKind kind, const char* text, void (*act)(MainWindow&)) {
    QAction* action = menu.addAction(makeIcon(kind, ink), text, this, [this, act] {
      if (!session_.mayAct()) return;
      act(*this);
      session_.acted();
    });
    tools.addAction(action);
    return action;
  };
  add(IconKind::kZoomExtents, "Zoom &extents", [](MainWindow& w) { w.canvas_->zoomExtents(); });
  add(IconKind::kZoomPrevious, "&Previous view", [](MainWindow& w) {
    if (!w.app_.zoomPrevious()) w.app_.print("\nThere is no earlier view.\n");
  });
  add(IconKind::kRegenerate, "&Regenerate", [](MainWindow& w) {
    w.app_.regenerate();
  })->setShortcut(Qt::Key_F5);
}

void MainWindow::fillHelpMenu(QMenu& menu) {
  menu.addAction("&Commands", this, [this] { session_.run("HELP"); });
  menu.addAction("&About Tarn Image", this, [this] { showAbout(); });
}

void MainWindow::chooseImages() {
  FileRequest request;
  request.several = true;
  request.title = "Add images";
  request.filter = kImageFilter;
  if (const auto names = dialogs_.fileNames(request)) addFiles(*names);
}

void MainWindow::savePicture() {
  FileRequest request;
  request.open = false;
  request.overwritePrompt = true;
  request.title = "Save picture";
  request.defaultExtension = "png";
  request.filter = "PNG picture|*.png||";
  const auto names = dialogs_.fileNames(request);
  if (!names || names->empty()) return;
  const std::string failure = app_.savePicture(names->front());
  app_.print("\n" + (failure.empty() ? names->front() + " written." : failure) + "\n");
  if (!failure.empty()) dialogs_.messageBox(failure, "Save picture", MB_ICONERROR);
}

void MainWindow::showAbout() {
  QMessageBox::about(this, "About Tarn Image",
                     "<p><b>Tarn Image</b> " + QApplication::applicationVersion().toHtmlEscaped() +
                         "</p><p>Shows very large georeferenced images in drawings.</p>"
                         "<p>Wheel: zoom. Middle button: pan; twice: show everything.<br>"
                         "Drop image files on the window to add them.</p>");
}

void MainWindow::addFiles(const std::vector<std::string>& paths) {
  const DroppedFiles sorted = sortDropped(paths);
  for (const std::string& path : sorted.others) {
    app_.print("\n" + path + ": only images (tif, tiff, img, jpg, jpeg) can be added.\n");
  }
  session_.addImages(sorted.images);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(session_.requestClose());
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  addFiles(localFiles(*event->mimeData()));
}

}  // namespace tarn::host
