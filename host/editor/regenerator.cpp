#include "host/editor/regenerator.h"

#include <chrono>
#include <cmath>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/text.h"
#include "dbblockref.h"
#include "dbdim.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/database/blockdraw.h"
#include "host/database/draworder.h"
#include "host/database/objectaccess.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/graphics/recorder.h"

namespace tarn::host {

namespace {

constexpr Adesk::UInt16 kForeground = 7;

/// Counts how deep drawing is nested; commands that run inside a drawing must not start another.
class Nesting {
 public:
  explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
  ~Nesting() { --depth_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& depth_;
};

/// Whoever changes the order may still have the block open.
AcDbObjectIdArray entitiesOf(AcDbObjectId block) {
  auto* record = AcDbBlockTableRecord::cast(peek(block));
  if (record == nullptr || record->isErased()) return AcDbObjectIdArray();
  const ObjectAccess::Look look(*record);
  return drawnOrder(*record);
}

struct LayerState {
  InheritedLook look{kForeground, {}};
  bool isFrozen = false;
  bool plots = true;
};

LayerState stateOf(AcDbObjectId id) {
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
  if (layer.openStatus() != Acad::eOk) return {};
  return {lookOf(*layer.object()), layer->isFrozen(), layer->isPlottable()};
}

LayerState layerOf(const AcDbEntity& entity) {
  return stateOf(entity.layerId());
}

/// Of an insertion whose layer is off, entities on other layers are seen.
bool isShown(const AcDbEntity& entity, const LayerState& layer) {
  return !entity.isErased() && entity.visibility() == AcDb::kVisible && !layer.isFrozen &&
         (!layer.look.isOff || entity.isKindOf(AcDbBlockReference::desc()));
}

/// Layers as they are at the beginning of a regeneration, each looked at once.
class LayerStates {
 public:
  const LayerState& of(const AcDbEntity& entity) {
    const AcDbObjectId id = entity.layerId();
    if (last_ == nullptr || id != lastId_) {
      const auto found = known_.find(id);
      last_ =
          found != known_.end() ? &found->second : &known_.emplace(id, stateOf(id)).first->second;
      lastId_ = id;
    }
    return *last_;
  }

 private:
  std::unordered_map<AcDbStub*, LayerState> known_;
  AcDbObjectId lastId_;
  const LayerState* last_ = nullptr;
};

bool abortWanted() {
  return HostApp::instance()->frontEnd().cancelWanted();
}

void drawEntity(Scene& scene, AcDbEntity& entity, const LayerState& layer, bool plots) {
  const Scene::Key key = entity.handle().value();
  if (!isShown(entity, layer) || (plots && !layer.plots)) {
    scene.remove(key);
    return;
  }
  DisplayList list = scene.take(key);
  {
    WorldDrawRecorder recorder(list, entity.database(), layer.look.color, kForeground, &abortWanted,
                               plots);
    setLook(recorder.subEntityTraits(), entity, layer.look, {kForeground, {}});
    entity.worldDraw(&recorder);
  }
  scene.set(key, std::move(list));
}

/// Points look alike in the whole drawing.
void setPointLook(Scene& scene, AcDbObjectId block) {
  const AcDbDatabase* database = block.database();
  if (database != nullptr) scene.setPointLook({database->pdmode(), database->pdsize()});
}

void countImages(const Scene& scene, long long& images, long long& pixels) {
  for (const Drawn* drawn : scene.drawn()) {
    for (const DisplayItem& item : drawn->list) {
      const auto* image = std::get_if<ImageItem>(&item);
      if (image == nullptr) continue;
      ++images;
      pixels += static_cast<long long>(image->image.width()) * image->image.height();
    }
  }
}

}  // namespace

void Regenerator::draw(Scene& scene, AcDbEntity& entity, bool plots) const {
  drawEntity(scene, entity, layerOf(entity), plots);
}

size_t Regenerator::drawBlock(Scene& scene, AcDbObjectId block) const {
  LayerStates layers;
  std::vector<Scene::Key> order;
  size_t count = 0;
  setPointLook(scene, block);
  for (const AcDbObjectId& id : entitiesOf(block)) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    const Scene::Key key = id.handle().value();
    if (entity.openStatus() == Acad::eOk) {
      drawEntity(scene, *entity.object(), layers.of(*entity.object()), false);
      ++count;
    }
    // One that is erased or not seen may come back, and then to its place.
    if (scene.keepsPlaceOf(key)) order.push_back(key);
  }
  scene.keepInOrder(order);
  return count;
}

void Regenerator::reorder(HostDocument& document, AcDbObjectId block) {
  const auto keep = [&](Scene& scene) {
    std::vector<Scene::Key> order;
    for (const AcDbObjectId& id : entitiesOf(block)) {
      const Scene::Key key = id.handle().value();
      if (scene.keepsPlaceOf(key)) order.push_back(key);
    }
    scene.keepInOrder(order);
  };
  if (block == document.space().shownBlock()) keep(document.scene());
  if (block == document.space().modelBlock()) {
    for (auto& window : document.windowScenes()) keep(window.second);
  }
  app_.frontEnd().displayChanged();
}

/// Calls `drawInto` with the scene of each viewport that is on the screen, while the view variables
/// are those of that viewport.
void Regenerator::drawWindows(HostDocument& document,
                              const std::function<void(Scene&)>& drawInto) const {
  for (const SheetWindow& window : document.space().windows()) {
    const QRect pixels = touchedPixels(window.onDevice, document.view());
    if (pixels.isEmpty()) continue;
    const DrawnViewport drawn(document.space(), window.id, croppedView(window.through, pixels));
    drawInto(document.windowScenes()[window.id]);
  }
}

bool Regenerator::recordPlot(Scene& scene, AcDbObjectId block,
                             const std::function<bool()>& proceed) {
  const Nesting nesting(depth_);
  setPointLook(scene, block);
  for (const AcDbObjectId& id : entitiesOf(block)) {
    if (!proceed()) return false;
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk) draw(scene, *entity.object(), true);
  }
  return proceed();
}

void Regenerator::regenerate(HostDocument& document) {
  if (depth_ > 0) return;
  const Nesting nesting(depth_);
  const auto start = std::chrono::steady_clock::now();
  beginCounting();
  ++screenDrawings_;
  const Space& space = document.space();
  size_t entities = drawBlock(document.scene(), space.shownBlock());
  document.windowScenes().clear();
  drawWindows(document, [&](Scene& scene) { entities += drawBlock(scene, space.modelBlock()); });
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
  if (statistics_) printStatistics(took.count(), entities);
}

void Regenerator::redraw(AcDbEntity& entity) {
  auto* document = static_cast<HostDocument*>(app_.documents().document(entity.database()));
  if (document == nullptr || depth_ > 0 || !document->space().shows(entity.blockId())) return;
  const Nesting nesting(depth_);
  const auto start = std::chrono::steady_clock::now();
  beginCounting();
  ++screenDrawings_;
  if (entity.blockId() == document->space().shownBlock()) {
    draw(document->scene(), entity);
  } else {
    drawWindows(*document, [&](Scene& scene) { draw(scene, entity); });
  }
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
  if (statistics_) printStatistics(took.count(), 1);
  app_.frontEnd().displayChanged();
}

void Regenerator::redrawLayer(HostDocument& document, AcDbObjectId layer) {
  const AcDbObjectId shown = document.space().shownBlock();
  const AcDbObjectId model = document.space().modelBlock();
  AcDbObjectIdArray ids = entitiesOf(shown);
  if (model != shown) ids.append(entitiesOf(model));
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    const bool showsBlock =
        entity->isKindOf(AcDbBlockReference::desc()) || entity->isKindOf(AcDbDimension::desc());
    if (showsBlock || entity->layerId() == layer) redraw(*entity.object());
  }
}

void Regenerator::forget(AcDbEntity& entity) {
  auto* document = static_cast<HostDocument*>(app_.documents().document(entity.database()));
  if (document == nullptr) return;
  document->scene().remove(entity.handle().value());
  for (auto& window : document->windowScenes()) window.second.remove(entity.handle().value());
  app_.frontEnd().displayChanged();
}

GroundBox Regenerator::extents(HostDocument& document) const {
  return extentsOf(document.space().currentBlock());
}

GroundBox Regenerator::extentsOf(AcDbObjectId block) const {
  GroundBox box;
  LayerStates layers;
  for (const AcDbObjectId& id : entitiesOf(block)) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbExtents extents;
    if (entity.openStatus() != Acad::eOk ||
        !isShown(*entity.object(), layers.of(*entity.object())) ||
        entity->getGeomExtents(extents) != Acad::eOk) {
      continue;
    }
    box.add(extents.minPoint().x, extents.minPoint().y);
    box.add(extents.maxPoint().x, extents.maxPoint().y);
  }
  return box;
}

void Regenerator::beginCounting() {
  const std::lock_guard<std::mutex> lock(mutex_);
  counters_.clear();
}

void Regenerator::count(const std::string& counter, long long amount) {
  const std::lock_guard<std::mutex> lock(mutex_);
  counters_[counter] += amount;
}

void Regenerator::printStatistics(double milliseconds, size_t entities) {
  long long images = 0;
  long long drawn = 0;
  const HostDocument& document = app_.documents().current();
  countImages(document.scene(), images, drawn);
  for (const auto& window : document.windowScenes()) countImages(window.second, images, drawn);
  const double rounded = std::round(milliseconds * 100) / 100;
  std::string line =
      "{\"ms\":" + formatDouble(rounded) + ",\"entities\":" + std::to_string(entities) +
      ",\"images\":" + std::to_string(images) + ",\"drawn_pixels\":" + std::to_string(drawn);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [name, amount] : counters_) {
      line += ",\"" + name + "\":" + std::to_string(amount);
    }
  }
  app_.print("\n" + line + "}\n");
}

}  // namespace tarn::host
