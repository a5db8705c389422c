#include "host/window/switches.h"

#include <QApplication>
#include <QMenu>

#include "host/editor/hostapp.h"
#include "host/editor/profile.h"
#include "host/editor/sysvars.h"
#include "host/window/snapkinds.h"

namespace tarn::host {

namespace {

constexpr std::uint32_t kDarkGround = 0x212830;
constexpr std::uint32_t kLightGround = 0xffffff;
/// The kinds that F3 switches on before any were chosen.
constexpr int kUsualSnaps = kSnapEnd | kSnapMid | kSnapCenter | kSnapIntersection;

/// All bits that kinds and their switch may have.
constexpr int kEverySnap = 2 * kSnapsOff - 1;

void setShort(HostApp& app, const char* name, int value) {
  app.variables().set(name, static_cast<short>(value));
}

QAction* entry(QMenu& menu, const char* text, bool checked, const std::function<void()>& act) {
  QAction* made = menu.addAction(words(text));
  made->setCheckable(true);
  made->setChecked(checked);
  QObject::connect(made, &QAction::triggered, &menu, act);
  return made;
}

}  // namespace

Switches::Switches(QWidget& window, HostApp& app, WindowSettings& settings, Hooks hooks)
    : window_(window),
      app_(app),
      settings_(settings),
      hooks_(std::move(hooks)),
      text_(new QAction(&window)),
      snaps_(new QAction(&window)),
      ortho_(new QAction(&window)),
      full_(new QAction(&window)),
      language_(languageOf(app.profile())) {
  const auto prepare = [&](QAction* action, int key, const std::function<void()>& act) {
    action->setShortcut(key);
    window_.addAction(action);
    QObject::connect(action, &QAction::triggered, &window_, act);
  };
  prepare(text_, Qt::Key_F2, hooks_.textWindow);
  prepare(snaps_, Qt::Key_F3, [this] {
    const int bits = app_.variables().shortOf("OSMODE");
    const int kinds = bits & ~kSnapsOff;
    setShort(app_, "OSMODE", kinds == 0 ? kUsualSnaps : bits ^ kSnapsOff);
    follow();
  });
  prepare(ortho_, Qt::Key_F8, [this] {
    setShort(app_, "ORTHOMODE", app_.variables().shortOf("ORTHOMODE") == 0 ? 1 : 0);
    follow();
  });
  prepare(full_, Qt::Key_F11, hooks_.fullScreen);
  for (QAction* action : {snaps_, ortho_}) action->setCheckable(true);
  const int snaps = settings_.number("snaps", kUsualSnaps | kSnapsOff);
  setShort(app_, "OSMODE", snaps >= 0 && snaps <= kEverySnap ? snaps : kUsualSnaps | kSnapsOff);
  setShort(app_, "ORTHOMODE", settings_.number("ortho", 0) == 1 ? 1 : 0);
  app_.setBackground(settings_.lightDrawing() ? kLightGround : kDarkGround);
  follow();
}

void Switches::keep() {
  settings_.setNumber("snaps", app_.variables().shortOf("OSMODE"));
  settings_.setNumber("ortho", app_.variables().shortOf("ORTHOMODE"));
}

bool Switches::follow() {
  const int bits = app_.variables().shortOf("OSMODE");
  snaps_->setChecked(bits != 0 && (bits & kSnapsOff) == 0);
  ortho_->setChecked(app_.variables().shortOf("ORTHOMODE") != 0);
  const Language now = languageOf(app_.profile());
  return std::exchange(language_, now) != now;
}

void Switches::fill(QMenu& menu, QMenu* bars) {
  text_->setText(words("Te&xt window"));
  snaps_->setText(words("&Object snaps"));
  ortho_->setText(words("Ort&ho"));
  full_->setText(words("&Full screen"));
  snaps_->setIconText(words("Snaps"));
  ortho_->setIconText(words("Ortho"));
  menu.addSeparator();
  menu.addAction(snaps_);
  fillSnaps(*menu.addMenu(words("&Kinds of snaps")));
  menu.addAction(ortho_);
  menu.addSeparator();
  menu.addAction(text_);
  if (bars != nullptr) {
    bars->setTitle(words("&Bars and lists"));
    bars->setParent(&menu, bars->windowFlags());
    menu.addMenu(bars);
  }
  addAppearance(*menu.addMenu(words("Appearan&ce")));
  addGround(*menu.addMenu(words("Drawing &ground")));
  addLanguages(*menu.addMenu(words("Lang&uage")));
  menu.addAction(full_);
}

void Switches::fillSnaps(QMenu& menu) {
  QObject::connect(&menu, &QMenu::aboutToShow, &menu, [this, menu = &menu] {
    menu->clear();
    const int bits = app_.variables().shortOf("OSMODE");
    for (const SnapKind& kind : kSnapKinds) {
      entry(*menu, kind.name, (bits & kind.bit) != 0, [this, kind] {
        // Choosing a kind is wanting it.
        const int now = app_.variables().shortOf("OSMODE");
        setShort(app_, "OSMODE", (now ^ kind.bit) & ~kSnapsOff);
        follow();
      });
    }
  });
}

void Switches::addAppearance(QMenu& menu) {
  const auto choose = [this](Appearance appearance) {
    settings_.setAppearance(appearance);
    applyAppearance(*qApp, appearance);
    hooks_.changed();
  };
  const Appearance now = settings_.appearance();
  for (const auto& [appearance, text] : {std::pair{Appearance::kDark, toSay("&Dark")},
                                         std::pair{Appearance::kLight, toSay("&Light")},
                                         std::pair{Appearance::kSystem, toSay("As the &system")}}) {
    entry(menu, text, appearance == now, [choose, which = appearance] { choose(which); });
  }
}

void Switches::addGround(QMenu& menu) {
  const bool now = settings_.lightDrawing();
  for (const auto& [light, text] :
       {std::pair{false, toSay("&Dark")}, std::pair{true, toSay("&Light")}}) {
    entry(menu, text, light == now, [this, which = light] {
      settings_.setLightDrawing(which);
      app_.setBackground(which ? kLightGround : kDarkGround);
      hooks_.changed();
    });
  }
}

void Switches::addLanguages(QMenu& menu) {
  // Each in its own words, so that everybody finds the way back.
  const std::pair<const char*, const char*> all[] = {{"ENU", "English"}, {"CHS", "中文"}};
  for (const auto& [locale, name] : all) {
    const bool isNow = (language_ == Language::kChinese) == (locale == std::string("CHS"));
    QAction* made = entry(menu, "", isNow, [this, which = std::string(locale)] {
      app_.variables().set("LOCALE", which);
      if (follow()) hooks_.changed();
    });
    made->setText(name);
  }
}

}  // namespace tarn::host
