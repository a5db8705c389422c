#include "host/window/menus.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QToolBar>
#include <optional>

#include "host/window/icons.h"

namespace tarn::host {

namespace {

class Builder {
 public:
  Builder(QMainWindow& window, const MenuHooks& hooks)
      : window_(window), hooks_(hooks), tools_(*window.addToolBar("Tools")) {
    tools_.setObjectName("tools");
    tools_.setMovable(false);
    tools_.setContextMenuPolicy(Qt::PreventContextMenu);
  }

  void begin(const char* title) { menu_ = window_.menuBar()->addMenu(title); }
  void separate() { menu_->addSeparator(); }
  void separateTools() { tools_.addSeparator(); }

  QAction& add(const char* text, const std::function<void()>& act, const QKeySequence& keys = {},
               std::optional<IconKind> icon = {}) {
    QAction* action = menu_->addAction(text, &window_, [window = &window_, act, keys] {
      // Keys of entries overtake what the mouse did before them and is not heard yet.
      if (keys.isEmpty()) return act();
      QTimer::singleShot(0, window, act);
    });
    action->setShortcut(keys);
    if (icon) {
      action->setIcon(makeIcon(*icon, window_.palette().color(QPalette::ButtonText)));
      tools_.addAction(action);
    }
    return *action;
  }
  QAction& run(const char* text, const char* line, const QKeySequence& keys = {},
               std::optional<IconKind> icon = {}) {
    return add(
        text, [run = hooks_.run, line] { run(line); }, keys, icon);
  }
  void look(const char* text, const char* line, std::optional<IconKind> icon = {}) {
    add(
        text, [look = hooks_.look, line] { look(line); }, {}, icon);
  }

 private:
  QMainWindow& window_;
  const MenuHooks& hooks_;
  QToolBar& tools_;
  QMenu* menu_ = nullptr;  ///< belongs to the window
};

void fillFileMenu(Builder& to, QMainWindow& window, const MenuHooks& hooks) {
  to.begin("&File");
  to.run("&New", "NEW", QKeySequence::New);
  to.run("&Open...", "OPEN", QKeySequence::Open, IconKind::kOpen);
  to.run("&Save", "SAVE", QKeySequence::Save, IconKind::kSave);
  to.run("Save &as...", "SAVEAS", QKeySequence("Ctrl+Shift+S"));
  to.run("&Close", "CLOSE", QKeySequence("Ctrl+W"));
  to.separate();
  to.separateTools();
  to.add("Add &images...", hooks.addImages, QKeySequence("Ctrl+I"), IconKind::kAddImages);
  to.run("Image ser&vers...", "IMAGESERVER");
  to.run("Save &picture...", "PNGOUT", {}, IconKind::kSavePicture);
  to.run("P&lot...", "PLOT", QKeySequence::Print);
  to.separate();
  to.separateTools();
  to.add(
      "&Quit", [&window] { window.close(); }, QKeySequence::Quit);
}

void fillEditMenu(Builder& to) {
  to.begin("&Edit");
  to.run("&Undo", "U", QKeySequence::Undo, IconKind::kUndo);
  to.run("&Redo", "REDO", QKeySequence("Ctrl+Y"), IconKind::kRedo)
      .setShortcuts({QKeySequence("Ctrl+Y"), QKeySequence("Ctrl+Shift+Z")});
  to.separate();
  to.separateTools();
  to.run("&Copy", "COPYCLIP", QKeySequence::Copy);
  to.run("&Paste", "PASTECLIP", QKeySequence::Paste);
  to.run("&Erase", "ERASE", QKeySequence::Delete);
}

void fillViewMenu(Builder& to, const MenuHooks& hooks) {
  to.begin("&View");
  to.look("Zoom &extents", "ZOOM Extents", IconKind::kZoomExtents);
  to.look("Zoom &window", "ZOOM Window", IconKind::kZoomWindow);
  to.look("&Previous view", "ZOOM Previous", IconKind::kZoomPrevious);
  to.look("P&an", "PAN", IconKind::kPan);
  to.look("&Twist", "TWIST");
  to.separate();
  to.add("&Regenerate", hooks.regenerate, Qt::Key_F5, IconKind::kRegenerate);
  to.separate();
  to.run("Image &list", "OpenImageList", QKeySequence("Ctrl+L"));
}

void fillHelpMenu(Builder& to, const MenuHooks& hooks) {
  to.begin("&Help");
  to.run("&Commands", "HELP");
  to.add("&About Tarn Image", hooks.about);
}

}  // namespace

void buildMenus(QMainWindow& window, const MenuHooks& hooks) {
  Builder to(window, hooks);
  fillFileMenu(to, window, hooks);
  fillEditMenu(to);
  fillViewMenu(to, hooks);
  fillHelpMenu(to, hooks);
}

}  // namespace tarn::host
