#include "host/window/menus.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <set>

#include "base/text.h"
#include "host/window/icons.h"
#include "host/window/words.h"

namespace tarn::host {

namespace {

enum Bar : size_t { kTools, kImages, kDraw, kModify, kProgram, kBars, kNoBar };

constexpr struct {
  const char* name;
  const char* title;
  Qt::ToolBarArea area;
} kBarForms[kBars] = {
    {"tools", toSay("Standard"), Qt::TopToolBarArea},
    {"images", toSay("Images"), Qt::TopToolBarArea},
    {"draw", toSay("Draw"), Qt::LeftToolBarArea},
    {"modify", toSay("Modify"), Qt::LeftToolBarArea},
    {"program", toSay("Program"), Qt::LeftToolBarArea},
};

}  // namespace

struct Menus::Entry {
  const char* text = nullptr;  ///< none: a line between groups
  const char* line = nullptr;  ///< the command
  const char* icon = nullptr;
  const char* keys = "";
  Bar bar = kNoBar;
  bool look = false;
  std::function<void()> MenuHooks::*act = nullptr;  ///< in the place of a command
};

struct Menus::Table {
  const char* title;
  std::vector<Entry> entries;
};

/// In each bar a gap stands between the entries of two menus or groups.
const std::vector<Menus::Table>& Menus::tables() {
  using H = MenuHooks;
  static const std::vector<Table> all = {
      {toSay("&File"),
       {{toSay("&New"), "NEW", "new", "Ctrl+N", kTools},
        {toSay("&Open..."), "OPEN", "open", "Ctrl+O", kTools},
        {toSay("&Save"), "SAVE", "save", "Ctrl+S", kTools},
        {toSay("Save &as..."), "SAVEAS", "saveas", "Ctrl+Shift+S", kTools},
        {toSay("&Close"), "CLOSE", "close", "Ctrl+W", kTools},
        {toSay("Reco&ver copies"), "RECOVER", "recover", "", kProgram},
        {},
        {toSay("P&lot..."), "PLOT", "plot", "Ctrl+P", kTools},
        {toSay("Save &picture..."), "PNGOUT", "picture", "", kTools},
        {},
        {toSay("&Quit"), nullptr, "quit", "Ctrl+Q", kProgram, false, &H::quit}}},
      {toSay("&Edit"),
       {{toSay("&Undo"), "U", "undo", "Ctrl+Z", kTools},
        {toSay("&Redo"), "REDO", "redo", "Ctrl+Y; Ctrl+Shift+Z", kTools},
        {toSay("Undo se&veral..."), "UNDO", "undomore", "", kTools},
        {toSay("Redo s&everal..."), "MREDO", "redomore", "", kTools},
        {},
        {toSay("&Copy"), "COPYCLIP", "copyclip", "Ctrl+C", kTools},
        {toSay("&Paste"), "PASTECLIP", "paste", "Ctrl+V", kTools}}},
      {toSay("&View"),
       {{toSay("Zoom &extents"), "ZOOM Extents", "extents", "", kTools, true},
        {toSay("Zoom &window"), "ZOOM Window", "zoomwindow", "", kTools, true},
        {toSay("&Previous view"), "ZOOM Previous", "previous", "", kTools, true},
        {toSay("P&an"), "PAN", "pan", "", kTools, true},
        {toSay("&Twist"), "TWIST", "twist", "", kTools, true},
        {toSay("&North up"), "TWIST 0", "north", "", kTools, true},
        {toSay("Turn by the &line of sight"), "DVIEW", "sight", "", kTools},
        {toSay("Named &views"), "VIEW", "views", "", kTools},
        {},
        {toSay("&Regenerate"), nullptr, "regen", "F5", kTools, false, &H::regenerate}}},
      {toSay("&Image"),
       {{toSay("Add &images..."), nullptr, "addimages", "Ctrl+I", kImages, false, &H::addImages},
        {toSay("Image &list"), "OpenImageList", "imagelist", "Ctrl+L", kImages},
        {toSay("Image &servers..."), "IMAGESERVER", "servers", "", kImages},
        {},
        {toSay("&Rectify..."), "rectifyImage", "rectify", "", kImages},
        {toSay("&Convert files..."), "ImageConversion", "convert", "", kImages},
        {},
        {toSay("Clarit&y"), "SetImageClarityRatio", "clarity", "", kImages},
        {toSay("Fetch more &around the view"), "SetImageOffsetRatio", "offset", "", kImages},
        {toSay("&Erase entities without an image"), "EraseInvalidImage", "eraseinvalid", "",
         kImages},
        {},
        {toSay("Add &point cloud..."), "loadCloud", "cloud", "", kImages},
        {toSay("Point cloud with p&osition..."), "-POINTCLOUDATTACH", "cloudplace", "", kImages}}},
      {toSay("&Draw"),
       {{toSay("&Line"), "LINE", "line", "", kDraw},
        {toSay("&Polyline"), "PLINE", "pline", "", kDraw},
        {toSay("&Circle"), "CIRCLE", "circle", "", kDraw},
        {toSay("&Text"), "TEXT", "text", "", kDraw}}},
      {toSay("&Modify"),
       {{toSay("&Move"), "MOVE", "move", "", kModify},
        {toSay("&Copy"), "COPY", "copy", "", kModify},
        {toSay("&Rotate"), "ROTATE", "rotate", "", kModify},
        {toSay("&Scale"), "SCALE", "scale", "", kModify},
        {toSay("M&irror"), "MIRROR", "mirror", "", kModify},
        {toSay("&Erase"), "ERASE", "erase", "Del", kModify},
        {toSay("&Bring the erased back"), "OOPS", "oops", "", kModify},
        {},
        {toSay("To the &front"), "BRINGTOFRONT", "tofront", "", kModify},
        {toSay("To the bac&k"), "SENDTOBACK", "toback", "", kModify},
        {toSay("&Above or under others"), "DRAWORDER", "draworder", "", kModify},
        {},
        {toSay("&Layers by prompts"), "LAYER", "layers", "", kModify}}},
      {toSay("&Sheet"),
       {{toSay("&Sheets by prompts"), "LAYOUT", "layout", "", kImages},
        {toSay("New &viewport"), "MVIEW", "viewport", "", kImages},
        {toSay("Work in the &model"), "MSPACE", "mspace", "", kImages},
        {toSay("Work on the s&heet"), "PSPACE", "pspace", "", kImages}}},
      {toSay("&Tools"),
       {{toSay("&Distance"), "DIST", "dist", "", kModify, true},
        {toSay("&Coordinates of a point"), "ID", "id", "", kModify, true},
        {toSay("&What is this?"), "LIST", "list", "", kModify},
        {},
        {toSay("Run a &script..."), "SCRIPT", "script", "", kProgram},
        {toSay("&Load a module..."), "APPLOAD", "module", "", kProgram},
        {toSay("Loaded &modules"), "ARX", "modules", "", kProgram},
        {toSay("System &variables"), "SETVAR", "variables", "", kProgram, true}}},
      {toSay("&Help"),
       {{toSay("&Commands"), "HELP", "help", "F1", kTools, true},
        {toSay("&First steps"), nullptr, nullptr, "", kNoBar, false, &H::guide},
        {toSay("&About Tarn Image"), nullptr, nullptr, "", kNoBar, false, &H::about}}}};
  return all;
}

Menus::Menus(QMainWindow& window, MenuHooks hooks) : window_(window), hooks_(std::move(hooks)) {
  for (const auto& form : kBarForms) {
    auto* made = new QToolBar(&window_);
    made->setObjectName(form.name);
    window_.addToolBar(form.area, made);
    bars_.push_back(made);
  }
}

Menus::~Menus() = default;

void Menus::build() {
  window_.menuBar()->clear();
  for (size_t i = 0; i < kBars; ++i) {
    bars_[i]->clear();
    bars_[i]->setWindowTitle(words(kBarForms[i].title));
  }
  entries_ = std::make_unique<QObject>();
  for (const Table& table : tables()) {
    auto* menu = new QMenu(words(table.title), window_.menuBar());
    QObject::connect(entries_.get(), &QObject::destroyed, menu, &QObject::deleteLater);
    window_.menuBar()->addMenu(menu);
    if (table.title == std::string_view("&View")) view_ = menu;
    if (table.title == std::string_view("&Edit")) edit_ = menu;
    for (QToolBar* bar : bars_) {
      if (!bar->actions().isEmpty() && !bar->actions().back()->isSeparator()) bar->addSeparator();
    }
    for (const Entry& entry : table.entries) add(*menu, entry);
    if (table.title == std::string_view("&Tools")) addOthers(*menu);
  }
  for (QToolBar* bar : bars_) {
    while (!bar->actions().isEmpty() && bar->actions().back()->isSeparator()) {
      delete bar->actions().back();
    }
  }
}

void Menus::add(QMenu& menu, const Entry& entry) {
  if (entry.text == nullptr) {
    menu.addSeparator();
    return;
  }
  auto* action = new QAction(words(entry.text), entries_.get());
  const QList<QKeySequence> keys = QKeySequence::listFromString(entry.keys);
  std::function<void()> act;
  if (entry.act != nullptr) {
    act = hooks_.*entry.act;
  } else {
    act = [run = entry.look ? hooks_.look : hooks_.run, line = entry.line] { run(line); };
  }
  QObject::connect(action, &QAction::triggered, &window_, [window = &window_, act, keys] {
    // Keys of entries overtake what the mouse did before them and is not heard yet.
    if (keys.isEmpty()) return act();
    QTimer::singleShot(0, window, act);
  });
  action->setShortcuts(keys);
  QString tip = action->text().remove('&').remove("...");
  if (!keys.isEmpty()) tip += " (" + keys.front().toString(QKeySequence::NativeText) + ")";
  if (entry.line != nullptr) tip += "\n" + QString(entry.line);
  action->setToolTip(tip);
  if (entry.icon != nullptr) {
    action->setIcon(makeIcon(entry.icon, window_.palette().color(QPalette::ButtonText)));
  }
  menu.addAction(action);
  if (entry.bar != kNoBar) bars_[entry.bar]->addAction(action);
  if (entry.line != nullptr && entry.line == std::string_view("OPEN")) addRecent(menu);
}

void Menus::addRecent(QMenu& menu) {
  QMenu* recent = menu.addMenu(words("Open &recent"));
  QObject::connect(recent, &QMenu::aboutToShow, recent, [this, recent] {
    recent->clear();
    int number = 0;
    for (const QString& path : hooks_.recentFiles()) {
      const QString text = QString("&%1  %2").arg(++number).arg(QString(path).replace('&', "&&"));
      QObject::connect(recent->addAction(text), &QAction::triggered, &window_,
                       [this, path] { hooks_.openFile(path); });
    }
    if (number == 0) recent->addAction(words("(none yet)"))->setEnabled(false);
  });
}

/// What modules have brought, and what stands in no menu otherwise.
void Menus::addOthers(QMenu& menu) {
  QMenu* others = menu.addMenu(words("&Other commands"));
  others->setIcon(makeIcon("more", window_.palette().color(QPalette::ButtonText)));
  others->menuAction()->setToolTip(words("Other commands"));
  bars_[kProgram]->addAction(others->menuAction());
  if (auto* button =
          qobject_cast<QToolButton*>(bars_[kProgram]->widgetForAction(others->menuAction()))) {
    button->setPopupMode(QToolButton::InstantPopup);
  }
  QObject::connect(others, &QMenu::aboutToShow, others, [this, others] {
    // Parts of the mouse and of scripts, no commands of a user's.
    std::set<std::string> known = {"grip_stretch", "uiclick", "addimage", "regen", "quit"};
    for (const Table& table : tables()) {
      for (const Entry& entry : table.entries) {
        if (entry.line != nullptr) known.insert(toLower(split(entry.line, ' ').front()));
      }
    }
    others->clear();
    for (const std::string& name : hooks_.commands()) {
      if (known.count(toLower(name)) != 0) continue;
      QObject::connect(others->addAction(QString::fromStdString(name)), &QAction::triggered,
                       &window_, [this, name] { hooks_.run(name.c_str()); });
    }
  });
}

}  // namespace tarn::host
