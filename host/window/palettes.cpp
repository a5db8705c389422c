#include "host/window/palettes.h"

#include <QAction>
#include <QMainWindow>

#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/window/icons.h"
#include "host/window/layerlist.h"
#include "host/window/propertylist.h"
#include "host/window/session.h"

namespace tarn::host {

namespace {

/// More would be read longer than a user wants to wait after each click.
constexpr size_t kMostListed = 2000;

}  // namespace

Palettes::Palettes(QMainWindow& window, HostApp& app, Session& session)
    : app_(app), session_(session) {
  makeLayers(window);
  makeProperties(window);
  for (QDockWidget* dock :
       {static_cast<QDockWidget*>(layers_), static_cast<QDockWidget*>(properties_)}) {
    QObject::connect(dock, &QDockWidget::visibilityChanged, dock, [this] {
      if (session_.mayAct()) show();
    });
  }
}

void Palettes::makeProperties(QMainWindow& window) {
  PropertyList::Hooks hooks;
  hooks.changed = [this](const std::string& name, const std::string& value) {
    const EntityIds ids = app_.documents().current().selection().pickFirst;
    perform([this, ids, name, value] { return changeValue(app_, ids, name, value); });
  };
  hooks.choices = [this](ValueKind kind) { return choicesFor(app_, kind); };
  properties_ = new PropertyList(&window, std::move(hooks));
  window.addDockWidget(Qt::RightDockWidgetArea, properties_);
  properties_->toggleViewAction()->setShortcut(QKeySequence("Ctrl+1"));
  properties_->hide();
}

void Palettes::makeLayers(QMainWindow& window) {
  LayerList::Hooks hooks;
  hooks.add = [this] {
    perform([this] {
      const auto made = addLayer(app_);
      return made ? Status() : Status::error(made.message());
    });
  };
  hooks.remove = [this](AcDbObjectId id) { perform([this, id] { return deleteLayer(app_, id); }); };
  hooks.makeCurrent = [this](AcDbObjectId id) {
    perform([this, id] { return setCurrentLayer(app_, id); });
  };
  hooks.rename = [this](AcDbObjectId id, const std::string& name) {
    perform([this, id, name] { return renameLayer(app_, id, name); });
  };
  hooks.change = [this](AcDbObjectId id, LayerSwitch what, bool on) {
    perform([this, id, what, on] { return switchLayer(app_, id, what, on); });
  };
  hooks.color = [this](AcDbObjectId id, int color) {
    perform([this, id, color] { return colorLayer(app_, id, color); });
  };
  layers_ = new LayerList(&window, std::move(hooks));
  window.addDockWidget(Qt::RightDockWidgetArea, layers_);
  layers_->toggleViewAction()->setShortcut(QKeySequence("Ctrl+2"));
  layers_->hide();
}

void Palettes::perform(const std::function<Status()>& change) {
  session_.perform([this, change] {
    if (const Status done = change(); !done) app_.print("\n" + done.message() + "\n");
  });
}

void Palettes::show() {
  if (app_.commandActive()) return;
  HostDocument& document = app_.documents().current();
  if (layers_->isVisible()) layers_->show(layersOf(*document.database()));
  if (!properties_->isVisible()) return;
  const EntityIds& chosen = document.selection().pickFirst;
  properties_->show(chosen.size(),
                    chosen.size() > kMostListed ? std::vector<EntityValue>() : valuesOf(chosen));
}

void Palettes::speakAgain() {
  layers_->speakAgain();
  properties_->speakAgain();
  const QColor ink = layers_->palette().color(QPalette::ButtonText);
  properties_->toggleViewAction()->setIcon(makeIcon("properties", ink));
  layers_->toggleViewAction()->setIcon(makeIcon("layers", ink));
}

std::vector<QAction*> Palettes::toggles() const {
  return {properties_->toggleViewAction(), layers_->toggleViewAction()};
}

}  // namespace tarn::host
