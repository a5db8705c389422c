#include "host/editor/layoutcommands.h"

#include <algorithm>

#include "acedads.h"
#include "base/text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/regenerator.h"

namespace tarn::host {

namespace {

constexpr const char* kNeedsSheet = "This needs a layout (TILEMODE 0).";

HostApp& app() {
  return *HostApp::instance();
}

HostDocument& document() {
  return app().documents().current();
}

/// A line of text; nothing when cancelled. Enter gives `standard`.
std::optional<std::string> askText(const std::string& prompt, const std::string& standard) {
  ACHAR typed[513] = {0};
  const std::string shown = standard.empty() ? prompt : prompt + " <" + standard + ">";
  if (acedGetString(1, toWide("\n" + shown + ": ").c_str(), typed) != RTNORM) return std::nullopt;
  std::string text(trim(std::string_view(toUtf8(typed))));
  return text.empty() ? standard : text;
}

void listLayouts() {
  const AcDbObjectId shown = document().space().tab().id;
  for (const LayoutEntry& entry : layoutsOf(*document().database())) {
    app().print("\n" + entry.name + (entry.id == shown ? " (shown)" : "") + "\n");
  }
}

void reportFailure(const Status& status) {
  if (!status) failCommand(app(), status.message());
}

void setLayout(const std::string& shown) {
  if (const auto name = askText("Layout to show", shown)) reportFailure(app().showTab(*name));
}

void newLayout() {
  AcDbDatabase& database = *document().database();
  int number = 1;
  while (!layoutNamed(database, "Layout" + std::to_string(number)).id.isNull()) ++number;
  const auto name = askText("Name of the new layout", "Layout" + std::to_string(number));
  if (!name) return;
  reportFailure(addLayout(database, *name).status());
}

void removeLayout(const std::string& shown) {
  const auto name = askText("Layout to delete", shown);
  if (!name) return;
  const bool isShown =
      !document().space().isTiled() && equalsIgnoreCase(std::string_view(*name), shown);
  const Status status = deleteLayout(*document().database(), *name);
  if (!status) return failCommand(app(), status.message());
  if (isShown) reportFailure(app().showTab(document().space().sheet().name));
}

void changeName(const std::string& shown) {
  const auto from = askText("Layout to rename", shown);
  const auto to = from ? askText("New name", "") : std::nullopt;
  if (to) reportFailure(renameLayout(*document().database(), *from, *to));
}

/// From a first corner to the one that is asked for; nothing when cancelled.
std::optional<GroundBox> askBoxFrom(const ads_point first) {
  ads_point second = {0, 0, 0};
  if (acedGetCorner(first, ACRX_T("\nOpposite corner: "), second) != RTNORM) return std::nullopt;
  GroundBox box;
  box.add(first[0], first[1]);
  box.add(second[0], second[1]);
  return box;
}

/// ON and OFF of the viewports that are chosen.
void switchViewports(bool on) {
  EntityIds ids;
  if (!selectForCommand(ids)) return;
  changeEntities(app(), ids, on ? "switched on" : "switched off", [on](AcDbEntity& entity) {
    auto* viewport = AcDbViewport::cast(&entity);
    return viewport != nullptr && (on ? viewport->setOn() : viewport->setOff()) == Acad::eOk;
  });
  app().regenerate();
}

/// Shows the whole model.
void addViewport(Space& space, const GroundBox& box) {
  if (!(box.maxX > box.minX) || !(box.maxY > box.minY)) {
    return failCommand(app(), "A viewport needs a width and a height.");
  }
  const GroundBox model = app().regenerator().extentsOf(space.modelBlock());
  if (appendViewport(space.shownBlock(), box, 0, {model}).isNull()) {
    return failCommand(app(), "The viewport cannot be added.");
  }
  app().regenerate();
}

}  // namespace

void mspaceCommand() {
  Space& space = document().space();
  if (space.isTiled()) return failCommand(app(), kNeedsSheet);
  if (!space.enterModel()) return failCommand(app(), "The layout has no viewport that is on.");
  app().frontEnd().displayChanged();
}

void pspaceCommand() {
  Space& space = document().space();
  if (space.isTiled()) return failCommand(app(), kNeedsSheet);
  space.leaveModel();
  app().frontEnd().displayChanged();
}

void layoutCommand() {
  const std::string shown = document().space().sheet().name;
  acedInitGet(0, ACRX_T("? Delete New Rename Set"));
  ACHAR option[513] = {0};
  const int answer = acedGetKword(ACRX_T("\nLayout [?/Delete/New/Rename/Set] <Set>: "), option);
  if (answer == RTNONE) return setLayout(shown);
  const std::string word = answer == RTNORM ? toUtf8(option) : std::string();
  if (word == "?") listLayouts();
  if (word == "Delete") removeLayout(shown);
  if (word == "New") newLayout();
  if (word == "Rename") changeName(shown);
  if (word == "Set") setLayout(shown);
}

void mviewCommand() {
  Space& space = document().space();
  if (space.isTiled()) return failCommand(app(), kNeedsSheet);
  space.leaveModel();
  ads_point first = {0, 0, 0};
  acedInitGet(0, ACRX_T("ON OFF Fit"));
  const int answer =
      acedGetPoint(nullptr, ACRX_T("\nCorner of the viewport or [ON/OFF/Fit]: "), first);
  if (answer == RTKWORD) {
    ACHAR word[32] = {0};
    acedGetInput(word);
    const std::string option = toUtf8(word);
    if (option == "Fit") return addViewport(space, space.limits());
    return switchViewports(option == "ON");
  }
  if (answer != RTNORM) return;
  if (const auto box = askBoxFrom(first)) addViewport(space, *box);
}

}  // namespace tarn::host
