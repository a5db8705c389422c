#include "host/window/entitypicker.h"

#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/picking.h"
#include "host/editor/sysvars.h"
#include "host/window/windowfrontend.h"

namespace tarn::host {

namespace {

std::string textOf(GroundPoint point) {
  return formatPoint(point.x, point.y);
}

}  // namespace

void EntityPicker::press(GroundPoint at) {
  pressed_ = at;
}

void EntityPicker::release(GroundPoint at, bool dragged, bool removes) {
  const bool isDrag = dragged && pressed_;
  const GroundPoint from = isDrag ? *pressed_ : at;
  pressed_.reset();
  if (frontEnd_.reading()) {
    answer(from, at, isDrag);
  } else if (!app_.commandActive() && app_.variables().shortOf("PICKFIRST") == 1) {
    choose(from, at, isDrag, removes);
  }
}

void EntityPicker::answer(GroundPoint from, GroundPoint to, bool dragged) {
  if (frontEnd_.readingKind() == InputKind::kSelect) {
    frontEnd_.give(!dragged ? textOf(to)
                            : std::string(isCrossing(app_, from, to) ? "_Crossing " : "_Window ") +
                                  textOf(from) + " " + textOf(to));
  } else if (frontEnd_.readingKind() == InputKind::kPoint) {
    // A snap that was named is looked for by the command itself.
    const bool isNamed = app_.documents().current().selection().namedSnaps != 0;
    frontEnd_.give(textOf(isNamed ? to : aimedAt(app_, to).point));
  }
}

void EntityPicker::choose(GroundPoint from, GroundPoint to, bool dragged, bool removes) {
  if (const auto corner = std::exchange(pointer_.windowCorner, std::nullopt)) {
    return takeWindow(*corner, to, removes);
  }
  if (const auto grip = gripAt(app_, from); grip && !removes) return stretch(*grip, to, dragged);
  if (dragged) return takeWindow(from, to, removes);
  const AcDbObjectId id = entityAt(app_, to);
  EntityIds& chosen = app_.documents().current().selection().pickFirst;
  if (id.isNull()) {
    // The other corner follows with the next click.
    pointer_.windowCorner = to;
  } else if (removes) {
    removeAll(chosen, {id});
  } else {
    addMissing(chosen, {id});
  }
  frontEnd_.displayChanged();
}

void EntityPicker::takeWindow(GroundPoint from, GroundPoint to, bool removes) {
  const EntityIds found = entitiesInWindow(app_, from, to, isCrossing(app_, from, to));
  EntityIds& chosen = app_.documents().current().selection().pickFirst;
  if (removes) {
    removeAll(chosen, found);
  } else {
    addMissing(chosen, found);
  }
  frontEnd_.displayChanged();
}

void EntityPicker::stretch(GroundPoint grip, GroundPoint to, bool dragged) {
  pointer_.hotGrip = grip;
  run_("GRIP_STRETCH " + textOf(grip) + (dragged ? " " + textOf(to) : std::string()));
  pointer_.hotGrip.reset();
  frontEnd_.displayChanged();
}

bool EntityPicker::clear() {
  EntityIds& chosen = app_.documents().current().selection().pickFirst;
  const bool any = !chosen.empty() || pointer_.windowCorner;
  chosen.clear();
  pointer_.windowCorner.reset();
  if (any) frontEnd_.displayChanged();
  return any;
}

PointerState EntityPicker::pointer() const {
  PointerState state = pointer_;
  state.snaps = frontEnd_.reading() && frontEnd_.readingKind() == InputKind::kPoint;
  if (!state.windowCorner && pressed_ && !state.hotGrip &&
      (!frontEnd_.reading() || frontEnd_.readingKind() == InputKind::kSelect)) {
    state.windowCorner = pressed_;
  }
  return state;
}

}  // namespace tarn::host
