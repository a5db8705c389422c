#include "host/database/drawnextents.h"

#include <cmath>
#include <numeric>

#include "acgi.h"
#include "dbents.h"
#include "dbextents.h"
#include "host/database/textmeasure.h"

namespace tarn::host {

namespace {

class BoxGeometry : public AcGiWorldGeometry {
 public:
  explicit BoxGeometry(AcDbExtents& box) : box_(box) {}

  Adesk::Boolean circle(const AcGePoint3d& center, double radius,
                        const AcGeVector3d&) const override {
    add(center.x - radius, center.y - radius, center.z);
    return add(center.x + radius, center.y + radius, center.z);
  }
  Adesk::Boolean polyline(Adesk::UInt32 count, const AcGePoint3d* points, const AcGeVector3d*,
                          Adesk::LongPtr) const override {
    return polygon(count, points);
  }
  Adesk::Boolean polygon(Adesk::UInt32 count, const AcGePoint3d* points) const override {
    for (Adesk::UInt32 i = 0; i < count; ++i) add(points[i].x, points[i].y, points[i].z);
    return Adesk::kFalse;
  }
  Adesk::Boolean text(const AcGePoint3d& at, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, double height, double width, double oblique,
                      const ACHAR* message) const override {
    return styledText(at, normal, direction, height, width, oblique, message, {});
  }
  Adesk::Boolean styledText(const AcGePoint3d& at, const AcGeVector3d& normal,
                            const AcGeVector3d& direction, double height, double width, double,
                            const ACHAR* message, const AcGiTextStyle& style) const override {
    const AcGeVector3d along = direction.normal();
    const AcGeVector3d up = normal.crossProduct(along).normal() * height;
    const AcGeVector3d across = along * (textWidth(message, style.fileName()) * height * width);
    for (const AcGePoint3d& corner : {at, at + across, at + up, at + across + up}) {
      add(corner.x, corner.y, corner.z);
    }
    return Adesk::kFalse;
  }
  Adesk::Boolean polyPolygon(Adesk::UInt32 loops, const Adesk::UInt32* counts,
                             const AcGePoint3d* points) const override {
    return polygon(std::accumulate(counts, counts + loops, Adesk::UInt32{0}), points);
  }
  Adesk::Boolean image(const AcGiImageBGRA32&, const AcGePoint3d& at, const AcGeVector3d& u,
                       const AcGeVector3d& v, TransparencyMode) const override {
    for (const AcGePoint3d& corner : {at, at + u, at + v, at + u + v}) {
      add(corner.x, corner.y, corner.z);
    }
    return Adesk::kFalse;
  }

 private:
  Adesk::Boolean add(double x, double y, double z) const {
    if (std::isfinite(x + y + z)) box_.addPoint({x, y, z});
    return Adesk::kFalse;
  }

  AcDbExtents& box_;
};

class NoTraits : public AcGiDrawableTraits {
 public:
  void setColor(Adesk::UInt16) override {}
  Adesk::UInt16 color() const override { return 7; }
  void setFillType(AcGiFillType) override {}
  AcGiFillType fillType() const override { return kAcGiFillAlways; }
  void setSelectionMarker(Adesk::LongPtr) override {}
};

class BoxContext : public AcGiContext {
 public:
  explicit BoxContext(AcDbDatabase* database) : database_(database) {}
  bool isPlotGeneration() const override { return false; }
  AcDbDatabase* database() const override { return database_; }

 private:
  AcDbDatabase* database_;
};

class BoxDraw : public AcGiWorldDraw {
 public:
  BoxDraw(AcDbExtents& box, AcDbDatabase* database) : geometry_(box), context_(database) {}
  AcGiRegenType regenType() const override { return kAcGiForExplode; }
  bool regenAbort() const override { return false; }
  AcGiSubEntityTraits& subEntityTraits() const override { return traits_; }
  AcGiGeometry& rawGeometry() const override { return geometry_; }
  bool isDragging() const override { return false; }
  AcGiContext* context() override { return &context_; }
  AcGiWorldGeometry& geometry() const override { return geometry_; }

 private:
  mutable BoxGeometry geometry_;
  mutable NoTraits traits_;
  BoxContext context_;
};

}  // namespace

Acad::ErrorStatus drawnExtents(const AcDbEntity& entity, AcDbExtents& extents) {
  AcDbExtents box;
  BoxDraw draw(box, entity.database());
  // Drawing changes nothing of the entity; the interface just does not say so.
  const_cast<AcDbEntity&>(entity).worldDraw(&draw);
  if (box.isEmpty()) return Acad::eInvalidExtents;
  extents = box;
  return Acad::eOk;
}

}  // namespace tarn::host
