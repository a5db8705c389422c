#include "host/database/blockdraw.h"

#include <cmath>
#include <numeric>
#include <vector>

#include "acgi.h"
#include "base/text.h"
#include "dbblockref.h"
#include "dbents.h"
#include "dbsymtb.h"
#include "host/database/draworder.h"
#include "host/database/entitysystem.h"
#include "host/database/objectaccess.h"

namespace tarn::host {

namespace {

constexpr int kDeepest = 24;
constexpr int kMostEntities = 2000000;
constexpr Adesk::UInt16 kByBlock = 0;
constexpr Adesk::UInt16 kByLayer = 256;

/// How deep blocks are nested, how many entities the outermost insertion has drawn, and what is by
/// layer in the one that is being drawn. Drawing happens on the main thread only.
struct Nesting {
  int depth = 0;
  int entities = 0;
  InheritedLook byLayer;
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
  Adesk::Boolean ray(const AcGePoint3d& first, const AcGePoint3d& second) const override {
    return target_.ray(map_ * first, map_ * second);
  }
  Adesk::Boolean xline(const AcGePoint3d& first, const AcGePoint3d& second) const override {
    return target_.xline(map_ * first, map_ * second);
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
  Adesk::Boolean polyPolygon(Adesk::UInt32 loops, const Adesk::UInt32* counts,
                             const AcGePoint3d* points) const override {
    const Adesk::UInt32 all = std::accumulate(counts, counts + loops, Adesk::UInt32{0});
    return target_.polyPolygon(loops, counts, place(all, points).data());
  }
  Adesk::Boolean text(const AcGePoint3d& at, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, double height, double width, double oblique,
                      const ACHAR* message) const override {
    return styledText(at, normal, direction, height, width, oblique, message, {});
  }
  /// A text that is stretched in one direction leans and gets wider; mirrored, its normal turns.
  Adesk::Boolean styledText(const AcGePoint3d& at, const AcGeVector3d& normal,
                            const AcGeVector3d& direction, double height, double width,
                            double oblique, const ACHAR* message,
                            const AcGiTextStyle& style) const override {
    const AcGeVector3d along = direction.normal();
    const AcGeVector3d up = normal.crossProduct(along).normal() + along * std::tan(oblique);
    const AcGeVector3d placedAlong = map_ * along;
    const AcGeVector3d placedUp = map_ * up;
    const AcGeVector3d placedNormal = placedAlong.crossProduct(placedUp);
    const double length = placedAlong.length();
    if (!(placedNormal.length() > 0)) return Adesk::kFalse;
    const double rise = placedNormal.length() / length;
    const double leaning = placedUp.dotProduct(placedAlong) / length;
    return target_.styledText(map_ * at, placedNormal.normal(), placedAlong, height * rise,
                              width * length / rise, std::atan(leaning / rise), message, style);
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

}  // namespace

void setResolvedColor(AcGiSubEntityTraits& traits, Adesk::UInt32 color) {
  if ((color & AcGiSubEntityTraits::kTrueColor) == AcGiSubEntityTraits::kTrueColor) {
    traits.setTrueColor(color & 0xFFFFFF);
  } else if (color == AcGiSubEntityTraits::kGroundColor) {
    traits.setGroundColor();
  } else {
    traits.setColor(static_cast<Adesk::UInt16>(color));
  }
}

namespace {

/// Colours of one entity inside a block, handed on as fixed ones.
class PlacedTraits : public AcGiDrawableTraits {
 public:
  PlacedTraits(AcGiSubEntityTraits& target, Adesk::UInt32 layerColor, Adesk::UInt32 blockColor)
      : target_(target), layerColor_(layerColor), blockColor_(blockColor) {}
  void setColor(Adesk::UInt16 color) override {
    if (color != kByLayer && color != kByBlock) return target_.setColor(color);
    const Adesk::UInt32 resolved = color == kByLayer ? layerColor_ : blockColor_;
    setResolvedColor(target_, resolved);
  }
  Adesk::UInt16 color() const override { return target_.color(); }
  void setTrueColor(Adesk::UInt32 rgb) override { target_.setTrueColor(rgb); }
  Adesk::UInt32 trueColor() const override { return target_.trueColor(); }
  void setLineType(AcDbObjectId linetype) override { target_.setLineType(linetype); }
  AcDbObjectId lineTypeId() const override { return target_.lineTypeId(); }
  void setLineTypeScale(double scale) override { target_.setLineTypeScale(scale); }
  void setLineWeight(AcDb::LineWeight weight) override { target_.setLineWeight(weight); }
  AcDb::LineWeight lineWeight() const override { return target_.lineWeight(); }
  void setTransparency(const AcCmTransparency& transparency) override {
    target_.setTransparency(transparency);
  }
  AcCmTransparency transparency() const override { return target_.transparency(); }
  void setGroundColor() override { target_.setGroundColor(); }
  void setFillType(AcGiFillType fill) override { target_.setFillType(fill); }
  AcGiFillType fillType() const override { return target_.fillType(); }
  void setSelectionMarker(Adesk::LongPtr marker) override { target_.setSelectionMarker(marker); }

 private:
  AcGiSubEntityTraits& target_;
  Adesk::UInt32 layerColor_;
  Adesk::UInt32 blockColor_;
};

class PlacedDraw : public AcGiWorldDraw {
 public:
  PlacedDraw(AcGiWorldDraw& target, const AcGeMatrix3d& map, Adesk::UInt32 layerColor,
             Adesk::UInt32 blockColor)
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

bool isByBlock(AcDbObjectId linetype) {
  const auto* record = AcDbLinetypeTableRecord::cast(peek(linetype));
  const ACHAR* name = L"";
  return record != nullptr && record->getName(name) == Acad::eOk &&
         equalsIgnoreCase(std::wstring_view(name), L"ByBlock");
}

void drawEntity(AcGiWorldDraw& draw, AcDbEntity& entity, const AcGeMatrix3d& toWorld,
                const InheritedLook& insertion, const InheritedLook& layerZero) {
  const ObjectAccess::Look look(entity);
  auto* layer = AcDbLayerTableRecord::cast(peek(entity.layerId()));
  InheritedLook byLayer = layerZero;
  if (layer != nullptr && entity.database()->layerZero() != entity.layerId()) {
    const ObjectAccess::Look lookAtLayer(*layer);
    const bool plots = draw.context() != nullptr && draw.context()->isPlotGeneration();
    if (layer->isFrozen() || (plots && !layer->isPlottable())) return;
    byLayer = lookOf(*layer);
  }
  // Of an insertion, what has layers of its own goes on being seen.
  if (byLayer.isOff && !entity.isKindOf(AcDbBlockReference::desc())) return;
  if (entity.visibility() != AcDb::kVisible) return;
  nesting().byLayer = byLayer;
  PlacedDraw placed(draw, toWorld, byLayer.color, insertion.color);
  setLook(placed.subEntityTraits(), entity, byLayer, insertion);
  entity.worldDraw(&placed);
}

}  // namespace

InheritedLook lookOf(const AcGiSubEntityTraits& traits) {
  return {traits.trueColor(), traits.lineTypeId(), traits.lineWeight(), traits.transparency()};
}

InheritedLook lookOf(const AcDbLayerTableRecord& layer) {
  const AcCmColor color = layer.color();
  const Adesk::UInt32 rgb = static_cast<Adesk::UInt32>(color.red()) << 16 |
                            static_cast<Adesk::UInt32>(color.green()) << 8 | color.blue();
  return {color.isByColor() ? AcGiSubEntityTraits::kTrueColor | rgb : color.colorIndex(),
          layer.linetypeObjectId(), layer.lineWeight(), layer.transparency(), layer.isOff()};
}

InheritedLook layerZeroWithin(const AcDbEntity& shown) {
  if (nesting().depth > 0) return nesting().byLayer;
  auto* layer = AcDbLayerTableRecord::cast(peek(shown.layerId()));
  if (layer == nullptr) return {};
  const ObjectAccess::Look look(*layer);
  return lookOf(*layer);
}

void setLook(AcGiSubEntityTraits& traits, const AcDbEntity& entity, const InheritedLook& layer,
             const InheritedLook& insertion) {
  const AcCmColor color = entity.color();
  if (color.isByColor()) {
    traits.setTrueColor(static_cast<Adesk::UInt32>(color.red()) << 16 |
                        static_cast<Adesk::UInt32>(color.green()) << 8 | color.blue());
  } else if (color.colorIndex() == kByLayer || color.colorIndex() == kByBlock) {
    setResolvedColor(traits, color.colorIndex() == kByLayer ? layer.color : insertion.color);
  } else {
    traits.setColor(color.colorIndex());
  }
  const AcDb::LineWeight weight = entity.lineWeight();
  traits.setLineWeight(weight == AcDb::kLnWtByLayer   ? layer.lineWeight
                       : weight == AcDb::kLnWtByBlock ? insertion.lineWeight
                                                      : weight);
  const AcCmTransparency seen = entity.transparency();
  traits.setTransparency(seen.isByLayer()   ? layer.transparency
                         : seen.isByBlock() ? insertion.transparency
                                            : seen);
  const AcDbObjectId own = entity.linetypeId();
  const AcDbObjectId linetype = own.isNull()     ? layer.linetype
                                : isByBlock(own) ? insertion.linetype
                                                 : own;
  if (linetype.isNull() && traits.lineTypeId().isNull()) return;
  traits.setLineType(linetype);
  traits.setLineTypeScale(entity.linetypeScale());
}

void drawBlock(AcGiWorldDraw& draw, const AcDbEntity& shown, AcDbObjectId block,
               const AcGeMatrix3d& toWorld, const InheritedLook& insertion) {
  auto* record = AcDbBlockTableRecord::cast(peek(block));
  Nesting& state = nesting();
  if (record == nullptr || state.depth >= kDeepest) return;
  if (state.depth == 0) state.entities = 0;
  const InheritedLook layerZero = layerZeroWithin(shown);
  ++state.depth;
  for (const AcDbObjectId& id : drawnOrder(*record)) {
    if (++state.entities > kMostEntities || draw.regenAbort()) break;
    auto* entity = AcDbEntity::cast(peek(id));
    if (entity == nullptr || entity->isErased()) continue;
    drawEntity(draw, *entity, toWorld, insertion, layerZero);
  }
  --state.depth;
  state.byLayer = layerZero;
}

}  // namespace tarn::host
