#include "host/window/mainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "base/text.h"
#include "host/editor/aliases.h"
#include "host/editor/clipboard.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/editor/sysvars.h"
#include "host/editor/tabs.h"
#include "host/window/canvas.h"
#include "host/window/canvasmenu.h"
#include "host/window/commandline.h"
#include "host/window/commandwords.h"
#include "host/window/dialogs.h"
#include "host/window/drawingtabs.h"
#include "host/window/filefilters.h"
#include "host/window/guide.h"
#include "host/window/statusarea.h"
#include "host/window/windowfrontend.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr int kCommandLineHeight = 110;
constexpr const char* kImageFilter =
    "Images|*.tif;*.tiff;*.img;*.jpg;*.jpeg|TIFF|*.tif;*.tiff|IMG|*.img|JPEG|*.jpg;*.jpeg||";

std::vector<std::string> localFiles(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data.urls()) {
    paths.push_back(
        (url.isLocalFile() ? QDir::toNativeSeparators(url.toLocalFile()) : url.toDisplayString())
            .toStdString());
  }
  return paths;
}

QString stateText(bool free, bool reading, InputKind kind) {
  if (!free) return words("Working – Escape stops it");
  if (!reading) return words("Ready");
  if (kind == InputKind::kSelect) {
    return words("Choose entities by clicks or a window – Enter ends");
  }
  return kind == InputKind::kPoint ? words("Click a point or type its coordinates – Escape cancels")
                                   : words("The command waits for an input – Escape cancels");
}

/// Commands by their names and short names; one that has both comes once.
std::vector<Suggestion> suggestionsFor(const HostApp& app, const std::string& start) {
  std::vector<Suggestion> all;
  for (const Alias& one : aliases()) {
    if (equalsIgnoreCase(std::string_view(one.alias), start))
      all.push_back({one.command, one.alias, {}});
  }
  const size_t byAlias = all.size();
  for (const std::string& name : app.commandsBeginningWith(start)) {
    const bool known = byAlias != 0 && equalsIgnoreCase(std::string_view(all[0].command), name);
    if (!known) all.push_back({name, {}, {}});
  }
  for (Suggestion& one : all) one.meaning = meaningOf(one.command).toStdString();
  return all;
}

}  // namespace

MainWindow::MainWindow(HostApp& app, WindowFrontEnd& frontEnd, DialogBackend& dialogs)
    : app_(app),
      frontEnd_(frontEnd),
      dialogs_(dialogs),
      settings_(app.profile().folder()),
      session_(app, frontEnd, [this] { close(); }),
      menus_(*this, menuHooks()),
      switches_(*this, app, settings_, switchHooks()),
      palettes_(*this, app, session_) {
  setAcceptDrops(true);
  if (settings_.appearance() != Appearance::kDark) applyAppearance(*qApp, settings_.appearance());
  buildCanvas();
  buildCommandLine();
  buildTabs();
  status_ = new StatusArea;
  setStatusBar(status_);
  auto* kinds = new QMenu;
  switches_.fillSnaps(*kinds);
  status_->addSwitch(switches_.snaps(), kinds);
  status_->addSwitch(switches_.ortho(), nullptr);
  arrange();
  guide_ = new Guide(this, settings_.number("guideClosed", 0) != 0,
                     [this](bool never) { settings_.setNumber("guideClosed", never ? 1 : 0); });
  addDockWidget(Qt::RightDockWidgetArea, guide_);
  guide_->hide();
  ways_ =
      std::make_unique<KeyboardWays>(*this, line_->input(), line_->history(), *drawings_, *sheets_);
  dialogs_.setParent(this);
  dialogs_.setAsking([this] { showState(); });
  dialogs_.windows()->attach(
      this, [this](std::function<void()> work) { session_.perform(std::move(work)); });
  speak(*qApp, languageOf(app_.profile()));
  speakAgain();
  frontEnd_.attach(*canvas_, *line_, *status_,
                   {[this] { showState(); }, [this] { session_.runQueued(); },
                    [this] { session_.requestClose(); }});
  line_->setFocus();
  settings_.restore(*this);
  guide_->hide();
}

MainWindow::~MainWindow() {
  dialogs_.setAsking({});
  frontEnd_.detach();
}

void MainWindow::arrange() {
  auto* upper = new QWidget;
  auto* column = new QVBoxLayout(upper);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(drawings_);
  column->addWidget(canvas_, 1);
  column->addWidget(sheets_);
  halves_ = new QSplitter(Qt::Vertical);
  halves_->addWidget(upper);
  halves_->addWidget(line_);
  halves_->setStretchFactor(0, 1);
  halves_->setCollapsible(0, false);
  halves_->setHandleWidth(3);
  setCentralWidget(halves_);
  resize(1280, 860);
  halves_->setSizes({height(), kCommandLineHeight});
  canvas_->setFocusPolicy(Qt::ClickFocus);
  canvas_->setFocusProxy(line_);
}

void MainWindow::buildCanvas() {
  Canvas::Hooks hooks;
  hooks.mayAct = [this] { return session_.mayAct(); };
  hooks.leftPans = [this] { return session_.panWaits(); };
  hooks.pressed = [this](GroundPoint ground) { session_.picker().press(ground); };
  hooks.released = [this](GroundPoint ground, bool dragged, bool shift) {
    session_.picker().release(ground, dragged, shift);
    if (session_.mayAct()) palettes_.show();
  };
  hooks.letGo = [this] { session_.picker().clear(); };
  hooks.hovered = [this](GroundPoint ground) {
    session_.picker().hover(ground);
    status_->showGround(ground);
  };
  hooks.left = [this] { session_.picker().leave(); };
  hooks.paintOver = [this](QPainter& painter) {
    PointerState pointer = session_.picker().pointer();
    pointer.ratio = canvas_->devicePixelRatioF();
    pointer.lightGround = settings_.lightDrawing();
    paintOverlay(painter, app_, pointer);
    status_->showView(app_.mouseView());
  };
  hooks.acted = [this] { session_.acted(); };
  hooks.nothingToShow = [this] {
    app_.print("\nThe drawing is empty: draw something, or add an image (Ctrl+I).\n");
  };
  hooks.menuWanted = [this](QPoint at) { openMenuOfCanvas(at); };
  canvas_ = new Canvas(app_, std::move(hooks));
  canvas_->setObjectName("canvas");
}

void MainWindow::buildCommandLine() {
  CommandLine::Hooks hooks;
  hooks.entered = [this](const std::string& line) { session_.enter(line); };
  hooks.escaped = [this] {
    session_.escape();
    if (session_.mayAct()) palettes_.show();
  };
  hooks.earlierLines = [this] { return app_.commandHistory(); };
  hooks.beginningWith = [this](const std::string& start) {
    if (frontEnd_.reading() || start.empty()) return std::vector<Suggestion>();
    return suggestionsFor(app_, start);
  };
  hooks.blankIsEnter = [this] {
    const InputKind kind = frontEnd_.readingKind();
    return kind != InputKind::kText && kind != InputKind::kFileName;
  };
  hooks.pastesEntities = [this] { return app_.clipboard().drawing != nullptr; };
  line_ = new CommandLine(std::move(hooks));
}

void MainWindow::buildTabs() {
  drawings_ = new DrawingTabs({[this](int index) { showDrawing(index, false); },
                               [this](int index) { showDrawing(index, true); }});
  sheets_ =
      new SheetTabs({[this](const std::string& name) { showSheet(name); },
                     [this](const std::string& name, QPoint at) { openSheetMenu(name, at); }});
}

/// Another drawing, or the question of one that is to go.
void MainWindow::showDrawing(int index, bool closes) {
  const auto all = app_.documents().all();
  if (index < 0 || static_cast<size_t>(index) >= all.size()) return;
  HostDocument* wanted = all[static_cast<size_t>(index)];
  session_.picker().clear();
  session_.perform([this, wanted, closes] {
    const auto present = app_.documents().all();
    if (std::find(present.begin(), present.end(), wanted) == present.end()) return;
    if (wanted != &app_.documents().current()) {
      app_.documents().setCurDocument(wanted, AcAp::kNone, true);
      app_.regenerate();
    }
    if (!closes) return;
    app_.print("\nCommand: CLOSE\n");
    app_.runLine("CLOSE");
  });
}

void MainWindow::showSheet(const std::string& name) {
  session_.picker().clear();
  session_.perform([this, name] {
    if (const Status shown = app_.showTab(name); !shown) app_.print("\n" + shown.message() + "\n");
  });
}

void MainWindow::openSheetMenu(const std::string& name, QPoint at) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const auto add = [&](const QString& text, const char* line) {
    QObject::connect(menu->addAction(text), &QAction::triggered, this, [this, name, line] {
      showSheet(name);
      session_.run(line);
    });
  };
  add(words("&New sheet"), "LAYOUT New");
  if (!equalsIgnoreCase(std::string_view(name), "Model")) {
    add(words("&Rename"), "LAYOUT Rename");
    add(words("&Delete"), "LAYOUT Delete");
    menu->addSeparator();
    add(words("P&lot..."), "PLOT");
  }
  menu->popup(at);
}

void MainWindow::openMenuOfCanvas(QPoint at) {
  CanvasMenu form;
  form.waits = frontEnd_.reading();
  form.wantsPoint = form.waits && frontEnd_.readingKind() == InputKind::kPoint;
  form.hasChosen = !app_.documents().current().selection().pickFirst.empty();
  form.mayPaste = app_.clipboard().drawing != nullptr;
  form.lastCommand = app_.lastCommand();
  form.run = [this](const char* line) { session_.run(line); };
  form.look = [this](const char* line) { session_.look(line); };
  form.give = [this](const char* line) {
    if (frontEnd_.reading()) frontEnd_.give(line);
  };
  form.escape = [this] { session_.escape(); };
  openCanvasMenu(*this, at, form);
}

void MainWindow::showState() {
  if (session_.mayAct() && switches_.follow()) {
    speak(*qApp, languageOf(app_.profile()));
    speakAgain();
  }
  setWindowTitle("Tarn Image – " + QString::fromStdString(app_.documentTitle()) + "[*]");
  // Setting it writes the title anew each time.
  const bool modified = app_.documents().current().isModified();
  if (modified != isWindowModified()) setWindowModified(modified);
  const bool free = !session_.busy();
  status_->showState(dialogs_.isAsking() || frontEnd_.asking()
                         ? words("Waiting for your choice – Escape leaves it")
                         : stateText(free, frontEnd_.reading(), frontEnd_.readingKind()));
  const bool selects = frontEnd_.readingKind() == InputKind::kSelect;
  canvas_->setAim(!free                 ? Aim::kNothing
                  : selects             ? Aim::kSelect
                  : frontEnd_.reading() ? Aim::kPoint
                                        : Aim::kCommand,
                  app_.variables().shortOf("PICKBOX"));
  if (session_.mayAct()) showTabs();
}

void MainWindow::showTabs() {
  HostDocument& current = app_.documents().current();
  std::vector<DrawingTab> drawings;
  int at = 0;
  for (const HostDocument* one : app_.documents().all()) {
    if (one == &current) at = static_cast<int>(drawings.size());
    drawings.push_back({QString::fromWCharArray(one->docTitle()),
                        QString::fromStdString(one->path()), one->isModified()});
  }
  drawings_->show(drawings, at);
  const TabNames tabs = tabNames(current);
  sheets_->show(tabs.all, static_cast<int>(tabs.shown));
  palettes_.show();
  if (current.hasFile()) settings_.addRecentFile(QString::fromStdString(current.path()));
}

/// Everything that has words or icons, in those of now.
void MainWindow::speakAgain() {
  menus_.build();
  palettes_.speakAgain();
  guide_->speakAgain();
  menus_.standardBar().addSeparator();
  for (QAction* toggle : palettes_.toggles()) menus_.standardBar().addAction(toggle);
  switches_.fill(menus_.view(), createPopupMenu());
  status_->speakAgain();
  drawings_->speakAgain();
  line_->speakAgain();
  canvas_->setAccessibleName(words("Drawing"));
}

Switches::Hooks MainWindow::switchHooks() {
  Switches::Hooks hooks;
  hooks.textWindow = [this] { toggleTextWindow(); };
  hooks.fullScreen = [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); };
  hooks.changed = [this] {
    speak(*qApp, languageOf(app_.profile()));
    speakAgain();
    showState();
    canvas_->contentChanged();
  };
  return hooks;
}

/// The command line takes two thirds of the window, or its usual few lines again.
void MainWindow::toggleTextWindow() {
  const int whole = halves_->height();
  const bool isLarge = line_->height() > whole / 2;
  const int lower = isLarge ? kCommandLineHeight : whole * 2 / 3;
  halves_->setSizes({whole - lower, lower});
}

MenuHooks MainWindow::menuHooks() {
  MenuHooks hooks;
  hooks.run = [this](const char* line) { session_.run(line); };
  hooks.look = [this](const char* line) { session_.look(line); };
  hooks.addImages = [this] { chooseImages(); };
  hooks.regenerate = [this] {
    if (!session_.mayAct()) return;
    app_.regenerate();
    session_.acted();
  };
  hooks.quit = [this] { close(); };
  hooks.guide = [this] { showGuide(false); };
  hooks.about = [this] { showAbout(); };
  hooks.recentFiles = [this] { return settings_.recentFiles(); };
  hooks.openFile = [this](const QString& path) { session_.openDrawings({path.toStdString()}); };
  hooks.commands = [this] { return app_.commandsBeginningWith(""); };
  return hooks;
}

void MainWindow::showGuide(bool unasked) {
  if (unasked && settings_.number("guideClosed", 0) != 0) return;
  guide_->show();
  guide_->raise();
}

void MainWindow::chooseImages() {
  // The command knows whether files are wanted at all: images may also come from a server.
  session_.chooseImages([this](bool begins) {
    dialogs_.setImageFiles(begins ? words("Add images").toStdString() : "",
                           begins ? kImageFilter : "");
  });
}

void MainWindow::showAbout() {
  QMessageBox::about(this, words("About Tarn Image"),
                     "<p><b>Tarn Image</b> " + QApplication::applicationVersion().toHtmlEscaped() +
                         "</p><p>" + words("Shows very large georeferenced images in drawings.") +
                         "</p><p>" +
                         words("Wheel: zoom. Middle button: pan; twice: show everything.") +
                         "<br>" + words("Drop image files on the window to add them.") + "</p>");
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
  if (mayClose) {
    settings_.keep(*this);
    switches_.keep();
  }
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
