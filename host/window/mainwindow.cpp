#include "host/window/mainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QSplitter>
#include <QUrl>

#include "host/editor/clipboard.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/window/barlayout.h"
#include "host/window/canvas.h"
#include "host/window/commandline.h"
#include "host/window/dialogs.h"
#include "host/window/filefilters.h"
#include "host/window/menus.h"
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
  fillMenus();
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
  dialogs_.windows()->attach(
      this, [this](std::function<void()> work) { session_.perform(std::move(work)); });
  frontEnd_.attach(*canvas_, *line_, *status_,
                   {[this] { showState(); }, [this] { session_.runQueued(); },
                    [this] { session_.requestClose(); }});
  line_->setFocus();
  restoreBars(*this, app_.profile().folder());
}

MainWindow::~MainWindow() {
  frontEnd_.detach();
}

void MainWindow::buildCanvas() {
  Canvas::Hooks hooks;
  hooks.mayAct = [this] { return session_.mayAct(); };
  hooks.leftPans = [this] { return session_.panWaits(); };
  hooks.pressed = [this](GroundPoint ground) { session_.picker().press(ground); };
  hooks.released = [this](GroundPoint ground, bool dragged, bool shift) {
    session_.picker().release(ground, dragged, shift);
  };
  hooks.letGo = [this] { session_.picker().clear(); };
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
  setWindowTitle("Tarn Image – " + QString::fromStdString(app_.documentTitle()) + "[*]");
  // Setting it writes the title anew each time.
  const bool modified = app_.documents().current().isModified();
  if (modified != isWindowModified()) setWindowModified(modified);
  status_->showState(stateText(!session_.busy(), frontEnd_.reading(), frontEnd_.readingKind()));
}

void MainWindow::fillMenus() {
  MenuHooks hooks;
  hooks.run = [this](const char* line) { session_.run(line); };
  hooks.look = [this](const char* line) { session_.look(line); };
  hooks.addImages = [this] { chooseImages(); };
  hooks.regenerate = [this] {
    if (!session_.mayAct()) return;
    app_.regenerate();
    session_.acted();
  };
  hooks.about = [this] { showAbout(); };
  buildMenus(*this, hooks);
}

void MainWindow::chooseImages() {
  // The command knows whether files are wanted at all: images may also come from a server.
  session_.chooseImages([this](bool begins) {
    dialogs_.setImageFiles(begins ? "Add images" : "", begins ? kImageFilter : "");
  });
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
    app_.print("\n" + path +
               ": only drawings (dxf) and images (tif, tiff, img, jpg, jpeg) can be opened.\n");
  }
  session_.openDrawings(sorted.drawings);
  session_.addImages(sorted.images);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  const bool mayClose = session_.requestClose();
  if (mayClose) keepBars(*this, app_.profile().folder());
  event->setAccepted(mayClose);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  addFiles(localFiles(*event->mimeData()));
}

}  // namespace tarn::host
