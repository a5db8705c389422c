#include "host/window/canvasmenu.h"

#include <QMenu>

#include "host/window/snapkinds.h"

namespace tarn::host {

namespace {

class Filler {
 public:
  Filler(QMenu& menu, const CanvasMenu& form) : menu_(menu), form_(form) {}

  void waiting() {
    add(toSay("&Enter"), [give = form_.give] { give(""); });
    add(toSay("&Cancel"), form_.escape);
    if (!form_.wantsPoint) return;
    QMenu& snaps = *menu_.addMenu(words("&Snap to"));
    for (const SnapKind& kind : kSnapKinds) {
      // The English names are the words that commands know.
      QObject::connect(snaps.addAction(words(kind.name)), &QAction::triggered,
                       [give = form_.give, name = kind.name] { give(name); });
    }
  }
  void idle() {
    if (!form_.lastCommand.empty()) {
      const QString text = words("&Repeat %1").arg(QString::fromStdString(form_.lastCommand));
      QObject::connect(menu_.addAction(text), &QAction::triggered,
                       [run = form_.run, name = form_.lastCommand] { run(name.c_str()); });
      menu_.addSeparator();
    }
    if (form_.hasChosen) {
      for (const auto& [text, line] :
           {std::pair{toSay("&Move"), "MOVE"}, std::pair{toSay("C&opy beside"), "COPY"},
            std::pair{toSay("Ro&tate"), "ROTATE"}, std::pair{toSay("&Scale"), "SCALE"},
            std::pair{toSay("&Erase"), "ERASE"}, std::pair{toSay("&What is this?"), "LIST"}}) {
        command(text, line);
      }
      menu_.addSeparator();
      command(toSay("&Copy"), "COPYCLIP");
    }
    if (form_.mayPaste) command(toSay("&Paste"), "PASTECLIP");
    if (form_.hasChosen) add(toSay("&Let go"), form_.escape);
  }
  void views() {
    menu_.addSeparator();
    for (const auto& [text, line] :
         {std::pair{toSay("Pa&n"), "PAN"}, std::pair{toSay("&Zoom to a window"), "ZOOM Window"},
          std::pair{toSay("Sho&w everything"), "ZOOM Extents"},
          std::pair{toSay("Pre&vious view"), "ZOOM Previous"}}) {
      add(text, [look = form_.look, which = line] { look(which); });
    }
  }

 private:
  void add(const char* text, const std::function<void()>& act) {
    QObject::connect(menu_.addAction(words(text)), &QAction::triggered, act);
  }
  void command(const char* text, const char* line) {
    add(text, [run = form_.run, line] { run(line); });
  }

  QMenu& menu_;
  const CanvasMenu& form_;
};

}  // namespace

void openCanvasMenu(QWidget& window, QPoint onScreen, const CanvasMenu& form) {
  auto* menu = new QMenu(&window);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  Filler filler(*menu, form);
  form.waits ? filler.waiting() : filler.idle();
  filler.views();
  menu->popup(onScreen);
}

}  // namespace tarn::host
