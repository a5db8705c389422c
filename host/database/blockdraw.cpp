#include "host/database/blockdraw.h"

#include <vector>

#include "acgi.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "host/database/entitysystem.h"
#include "host/database/objectaccess.h"

namespace tarn::host {

namespace {

constexpr int kDeepest = 24;
constexpr int kMostEntities = 2000000;
constexpr Adesk::UInt16 kByBlock = 0;
constexpr Adesk::UInt16 kByLayer = 256;

/// How deep blocks are nested, and how many entities the outermost insertion has drawn. Drawing
/// happens on the main thread only.
struct Nesting {
  int depth = 0;
  int entities = 0;
};
Nesting& nesting() {
  static Nesting state;
  return state;
}

class PlacedGeometry : public AcGiWorldGeometry {
 public:
  PlacedGeometry(const AcGiGeometry& target, const AcGeMatrix3d& map)
      : target_(target), map_(map) {}

  Adesk::Boolean circle(const AcGePoint3d& center, double radius,
                        const AcGeVector3d& normal) const override {
    const AcGeMatrix3d world = entityToWorld(normal);
    std::vector<AcGePoint3d> points = arcPoints(world.inverse() * center, radius, 0, 0);
    transformAll(points, map_ * world);
    return target_.polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
  }
  Adesk::Boolean polyline(Adesk::UInt32 count, const AcGePoint3d* points, const AcGeVector3d*,
                          Adesk::LongPtr marker) const override {
    const std::vector<AcGePoint3d> placed = place(count, points);
    return target_.polyline(count, placed.data(), nullptr, marker);
  }
  Adesk::Boolean polygon(Adesk::UInt32 count, const AcGePoint3d* points) const override {
    const std::vector<AcGePoint3d> placed = place(count, points);
    return target_.polygon(count, placed.data());
  }
  Adesk::Boolean text(const AcGePoint3d& at, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, double height, double width, double oblique,
                      const ACHAR* message) const override {
    const AcGeVector3d along = direction.normal();
    const AcGeVector3d placedAlong = map_ * along;
    const double up = (map_ * normal.crossProduct(along).normal()).length();
    if (!(up > 0)) return Adesk::kFalse;
    return target_.text(map_ * at, normal, placedAlong, height * up,
                        width * placedAlong.length() / up, oblique, message);
  }
  Adesk::Boolean image(const AcGiImageBGRA32& source, const AcGePoint3d& at, const AcGeVector3d& u,
                       const AcGeVector3d& v, TransparencyMode mode) const override {
    return target_.image(source, map_ * at, map_ * u, map_ * v, mode);
  }

 private:
  std::vector<AcGePoint3d> place(Adesk::UInt32 count, const AcGePoint3d* points) const {
    std::vector<AcGePoint3d> placed(points, points + count);
    transformAll(placed, map_);
    return placed;
  }

  const AcGiGeometry& target_;
  const AcGeMatrix3d& map_;
};

/// Colours of one entity inside a block, handed on as fixed ones.
class PlacedTraits : public AcGiDrawableTraits {
 public:
  PlacedTraits(AcGiSubEntityTraits& target, Adesk::UInt16 layerColor, Adesk::UInt16 blockColor)
      : target_(target), layerColor_(layerColor), blockColor_(blockColor) {}
  void setColor(Adesk::UInt16 color) override {
    target_.setColor(color == kByLayer ? layerColor_ : color == kByBlock ? blockColor_ : color);
  }
  Adesk::UInt16 color() const override { return target_.color(); }
  void setFillType(AcGiFillType fill) override { target_.setFillType(fill); }
  AcGiFillType fillType() const override { return target_.fillType(); }
  void setSelectionMarker(Adesk::LongPtr marker) override { target_.setSelectionMarker(marker); }

 private:
  AcGiSubEntityTraits& target_;
  Adesk::UInt16 layerColor_;
  Adesk::UInt16 blockColor_;
};

class PlacedDraw : public AcGiWorldDraw {
 public:
  PlacedDraw(AcGiWorldDraw& target, const AcGeMatrix3d& map, Adesk::UInt16 layerColor,
             Adesk::UInt16 blockColor)
      : target_(target),
        geometry_(target.geometry(), map),
        traits_(target.subEntityTraits(), layerColor, blockColor) {}
  AcGiRegenType regenType() const override { return target_.regenType(); }
  bool regenAbort() const override { return target_.regenAbort(); }
  AcGiSubEntityTraits& subEntityTraits() const override { return traits_; }
  AcGiGeometry& rawGeometry() const override { return geometry_; }
  bool isDragging() const override { return target_.isDragging(); }
  AcGiContext* context() override { return target_.context(); }
  AcGiWorldGeometry& geometry() const override { return geometry_; }

 private:
  AcGiWorldDraw& target_;
  mutable PlacedGeometry geometry_;
  mutable PlacedTraits traits_;
};

void drawEntity(AcGiWorldDraw& draw, AcDbEntity& entity, const AcGeMatrix3d& toWorld,
                Adesk::UInt16 insertColor) {
  const ObjectAccess::Look look(entity);
  auto* layer = AcDbLayerTableRecord::cast(peek(entity.layerId()));
  Adesk::UInt16 layerColor = insertColor;
  if (layer != nullptr) {
    const ObjectAccess::Look lookAtLayer(*layer);
    if (layer->isFrozen() || layer->isOff()) return;
    const bool isZero = entity.database()->layerZero() == entity.layerId();
    if (!isZero) layerColor = layer->colorIndex();
  }
  if (entity.visibility() != AcDb::kVisible) return;
  PlacedDraw placed(draw, toWorld, layerColor, insertColor);
  placed.subEntityTraits().setColor(entity.colorIndex());
  entity.worldDraw(&placed);
}

}  // namespace

void drawBlock(AcGiWorldDraw& draw, AcDbObjectId block, const AcGeMatrix3d& toWorld,
               Adesk::UInt16 insertColor) {
  auto* record = AcDbBlockTableRecord::cast(peek(block));
  Nesting& state = nesting();
  if (record == nullptr || state.depth >= kDeepest) return;
  if (state.depth == 0) state.entities = 0;
  ++state.depth;
  for (const AcDbObjectId& id : record->entityIds()) {
    if (++state.entities > kMostEntities || draw.regenAbort()) break;
    auto* entity = AcDbEntity::cast(peek(id));
    if (entity == nullptr || entity->isErased()) continue;
    drawEntity(draw, *entity, toWorld, insertColor);
  }
  --state.depth;
}

}  // namespace tarn::host
