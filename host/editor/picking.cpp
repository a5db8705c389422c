#include "host/editor/picking.h"

#include <algorithm>
#include <set>

#include "adscodes.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/documents.h"
#include "host/editor/entityfilter.h"
#include "host/editor/hostapp.h"
#include "host/editor/inputvalues.h"
#include "host/editor/pointinput.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

constexpr int kCornersOfPicture = 4;

void addExtents(Outlines& outlines, const AcDbEntity& entity, const ViewState& view) {
  AcDbExtents box;
  if (entity.getGeomExtents(box) != Acad::eOk) return;
  const AcGePoint3d low = box.minPoint();
  const AcGePoint3d high = box.maxPoint();
  addFrame(outlines, {{low.x, low.y}, {high.x, low.y}, {high.x, high.y}, {low.x, high.y}}, view);
}

/// The corner points of each image, four by four.
void addCorners(Outlines& outlines, const AcDbEntity& entity, const ViewState& view) {
  AcGePoint3dArray grips;
  AcDbIntArray modes;
  AcDbIntArray ids;
  if (entity.getGripPoints(grips, modes, ids) != Acad::eOk) return;
  for (int i = 0; i + kCornersOfPicture <= grips.length(); i += kCornersOfPicture) {
    std::vector<GroundPoint> corners;
    for (int k = i; k < i + kCornersOfPicture; ++k) corners.push_back({grips[k].x, grips[k].y});
    addFrame(outlines, corners, view);
  }
}

/// Tells by the ground that an entity covers, without a look at its lines, where that is enough.
class WindowSieve {
 public:
  WindowSieve(const ViewState& view, const PixelBox& box) : turned_(view.twist != 0) {
    for (const PixelPoint corner :
         {PixelPoint{box.minX, box.minY}, PixelPoint{box.minX, box.maxY},
          PixelPoint{box.maxX, box.minY}, PixelPoint{box.maxX, box.maxY}}) {
      const GroundPoint ground = groundFromPixel(view, corner);
      window_.add(ground.x, ground.y);
    }
    // What touches the rim is looked at closely.
    rim_ = view.unitsPerPixel();
  }

  bool isOutside(const Drawn& drawn) const {
    const GroundBox& box = drawn.box;
    return !drawn.isEverywhere &&
           (box.minX > window_.maxX + rim_ || box.maxX < window_.minX - rim_ ||
            box.minY > window_.maxY + rim_ || box.maxY < window_.minY - rim_);
  }
  bool isInside(const Drawn& drawn) const {
    const GroundBox& box = drawn.box;
    return !turned_ && !drawn.isEverywhere && !drawn.list.empty() && !hasImages(drawn.list) &&
           box.minX > window_.minX + rim_ && box.maxX < window_.maxX - rim_ &&
           box.minY > window_.minY + rim_ && box.maxY < window_.maxY - rim_;
  }

 private:
  bool turned_;
  GroundBox window_;
  double rim_ = 0;
};

/// Entities of a scene, asked for in their order.
class DrawnInOrder {
 public:
  explicit DrawnInOrder(const Scene& scene) : scene_(scene) {}
  const Drawn* of(AcDbObjectId id) {
    const Scene::Key key = id.handle().value();
    if (next_ >= scene_.order().size() || scene_.order()[next_] != key)
      return scene_.findDrawn(key);
    const Drawn* drawn = scene_.drawn()[next_++];
    return drawn->isGone ? nullptr : drawn;
  }

 private:
  const Scene& scene_;
  size_t next_ = 0;
};

EntityIds fitting(const EntityIds& ids, const resbuf* filter) {
  if (filter == nullptr) return ids;
  EntityIds kept;
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk && fitsFilter(*entity.object(), filter)) {
      kept.push_back(id);
    }
  }
  return kept;
}

/// One interactive selection.
class Choice {
 public:
  Choice(HostApp& app, const std::string& prompt, const resbuf* filter)
      : app_(app),
        prompt_(prompt),
        filter_(filter),
        memory_(app.documents().current().selection()) {
    memory_.choosing.clear();
  }
  ~Choice() {
    memory_.choosing.clear();
    app_.frontEnd().displayChanged();
  }
  Choice(const Choice&) = delete;
  Choice& operator=(const Choice&) = delete;

  std::optional<EntityIds> run() {
    static const std::vector<std::string> kWords =
        keywordList("Window Crossing Last Previous ALL Add Remove Undo");
    for (;;) {
      const auto text =
          app_.commands().ask(removing_ ? "\nRemove objects: " : prompt_, InputKind::kSelect);
      if (!text) return std::nullopt;
      if (text->empty()) return memory_.choosing;
      if (const auto word = matchKeyword(*text, kWords)) {
        if (!takeWord(*word)) return std::nullopt;
      } else if (const auto point = parsePoint(*text, lastPoint())) {
        if (!takePoint({point->x, point->y})) return std::nullopt;
      } else {
        app_.print("\n\"" + *text +
                   "\" is no selection; expected is a point or "
                   "Window/Crossing/Last/Previous/ALL/Add/Remove/Undo.\n");
      }
    }
  }

 private:
  Point3 lastPoint() const { return std::get<Point3>(*app_.variables().get("LASTPOINT")); }

  bool takeWord(const std::string& word) {
    HostDocument& document = app_.documents().current();
    if (word == "Window" || word == "Crossing") return takeWindow(word == "Crossing");
    if (word == "Add") removing_ = false;
    if (word == "Remove") removing_ = true;
    if (word == "Undo") undo();
    if (word == "ALL") take(currentSpaceEntities(document));
    if (word == "Previous") take(usable(app_, memory_.previous, nullptr));
    if (word == "Last") takeLast(currentSpaceEntities(document));
    return true;
  }

  void takeLast(const EntityIds& all) {
    if (all.empty()) {
      take({});
    } else {
      take({all.back()});
    }
  }

  bool takeWindow(bool crossing) {
    ads_point a = {0, 0, 0};
    if (askPickedPoint("\nFirst corner: ", a) != RTNORM) return cancelledOrNot();
    return takeSecondCorner({a[0], a[1]}, &crossing);
  }

  bool takePoint(GroundPoint point) {
    const AcDbObjectId id = entityAt(app_, point);
    if (!id.isNull()) {
      take({id});
      return true;
    }
    return takeSecondCorner(point, nullptr);
  }

  bool takeSecondCorner(GroundPoint first, const bool* crossing) {
    const ads_point a = {first.x, first.y, 0};
    ads_point b = {0, 0, 0};
    if (askPickedPoint("\nOpposite corner: ", b, a) != RTNORM) return cancelledOrNot();
    const GroundPoint second{b[0], b[1]};
    const bool touching = crossing != nullptr ? *crossing : isCrossing(app_, first, second);
    take(entitiesInWindow(app_, first, second, touching));
    return true;
  }

  /// Enter instead of a corner only gives the window up.
  bool cancelledOrNot() const { return !app_.commands().inputCancelled(); }

  void take(const EntityIds& found) {
    const EntityIds ids = fitting(found, filter_);
    steps_.push_back(memory_.choosing);
    std::string text = "\n" + std::to_string(ids.size()) + " found";
    if (removing_) {
      removeAll(memory_.choosing, ids);
    } else {
      const int added = addMissing(memory_.choosing, ids);
      const int known = static_cast<int>(ids.size()) - added;
      if (known > 0) text += " (" + std::to_string(known) + " selected already)";
    }
    app_.print(text + ", " + std::to_string(memory_.choosing.size()) + " selected.\n");
    app_.frontEnd().displayChanged();
  }

  void undo() {
    if (steps_.empty()) {
      app_.print("\nNothing was selected yet: click entities or drag a window.\n");
      return;
    }
    memory_.choosing = std::move(steps_.back());
    steps_.pop_back();
    app_.print("\n" + std::to_string(memory_.choosing.size()) + " selected.\n");
    app_.frontEnd().displayChanged();
  }

  HostApp& app_;
  std::string prompt_;
  const resbuf* filter_;
  SelectionMemory& memory_;
  std::vector<EntityIds> steps_;
  bool removing_ = false;
};

}  // namespace

static Outlines outlinesWith(HostDocument& document, AcDbObjectId id, bool corners) {
  const DisplayList* list = document.currentScene().find(id.handle().value());
  if (list == nullptr) return {};
  const ViewState view = document.space().mouseView();
  if (!hasImages(*list)) return outlinesOf(*list, view);
  Outlines outlines;
  const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
  if (entity.openStatus() != Acad::eOk) return outlines;
  addExtents(outlines, *entity.object(), view);
  if (corners) addCorners(outlines, *entity.object(), view);
  return outlines;
}

Outlines outlinesOf(HostDocument& document, AcDbObjectId id) {
  return outlinesWith(document, id, true);
}

Outlines highlightOf(HostDocument& document, AcDbObjectId id) {
  return outlinesWith(document, id, false);
}

AcDbObjectId entityAt(HostApp& app, GroundPoint point) {
  HostDocument& document = app.documents().current();
  const PixelPoint pixel = pixelFromGround(document.space().mouseView(), point);
  const double reach = app.variables().shortOf("PICKBOX") + 0.5;
  const EntityIds ids = currentSpaceInDrawnOrder(document);
  const auto found = std::find_if(ids.rbegin(), ids.rend(), [&](const AcDbObjectId& id) {
    return distanceTo(outlinesOf(document, id), pixel) <= reach;
  });
  return found == ids.rend() ? AcDbObjectId() : *found;
}

EntityIds entitiesInWindow(HostApp& app, GroundPoint a, GroundPoint b, bool crossing) {
  HostDocument& document = app.documents().current();
  const ViewState view = document.space().mouseView();
  const PixelBox box = boxOf(pixelFromGround(view, a), pixelFromGround(view, b));
  const WindowSieve sieve(view, box);
  DrawnInOrder drawn(document.currentScene());
  EntityIds found;
  for (const AcDbObjectId& id : currentSpaceInDrawnOrder(document)) {
    const Drawn* seen = drawn.of(id);
    if (seen == nullptr || sieve.isOutside(*seen)) continue;
    if (sieve.isInside(*seen)) {
      found.push_back(id);
      continue;
    }
    // Grips of an image may lie beyond its pixels: what is inside is told by the ground alone.
    const Outlines outlines = outlinesWith(document, id, crossing);
    if (crossing ? touches(outlines, box) : liesInside(outlines, box)) found.push_back(id);
  }
  return found;
}

bool isCrossing(const HostApp& app, GroundPoint a, GroundPoint b) {
  const ViewState view = app.mouseView();
  return pixelFromGround(view, b).x < pixelFromGround(view, a).x;
}

std::optional<EntityIds> askEntities(HostApp& app, const std::string& prompt,
                                     const resbuf* filter) {
  return Choice(app, prompt, filter).run();
}

int addMissing(EntityIds& ids, const EntityIds& added) {
  std::set<AcDbObjectId> known(ids.begin(), ids.end());
  int count = 0;
  for (const AcDbObjectId& id : added) {
    if (!known.insert(id).second) continue;
    ids.push_back(id);
    ++count;
  }
  return count;
}

void removeAll(EntityIds& ids, const EntityIds& removed) {
  const std::set<AcDbObjectId> gone(removed.begin(), removed.end());
  ids.erase(std::remove_if(ids.begin(), ids.end(),
                           [&](const AcDbObjectId& id) { return gone.count(id) > 0; }),
            ids.end());
}

EntityIds usable(HostApp& app, const EntityIds& ids, const resbuf* filter) {
  const EntityIds here = currentSpaceEntities(app.documents().current());
  const std::set<AcDbObjectId> known(here.begin(), here.end());
  EntityIds kept;
  std::copy_if(ids.begin(), ids.end(), std::back_inserter(kept),
               [&](const AcDbObjectId& id) { return known.count(id) > 0; });
  return fitting(kept, filter);
}

}  // namespace tarn::host
