// A world draw that keeps what was drawn.
#pragma once

#include <string>
#include <vector>

#include "acgi.h"

namespace tarn::test {

struct DrawnImage {
  Adesk::UInt32 width = 0;
  Adesk::UInt32 height = 0;
  std::vector<AcGiPixelBGRA32> pixels;
  AcGePoint3d origin;
  AcGeVector3d u;
  AcGeVector3d v;
};

class RecordingGeometry final : public AcGiWorldGeometry {
 public:
  Adesk::Boolean circle(const AcGePoint3d&, double, const AcGeVector3d&) const override {
    order.emplace_back("circle");
    return false;
  }
  Adesk::Boolean polyline(Adesk::UInt32 count, const AcGePoint3d* points, const AcGeVector3d*,
                          Adesk::LongPtr marker) const override {
    order.push_back("polyline " + std::to_string(marker));
    lines.emplace_back(points, points + count);
    return false;
  }
  Adesk::Boolean polygon(Adesk::UInt32, const AcGePoint3d*) const override {
    order.emplace_back("polygon");
    return false;
  }
  Adesk::Boolean text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, double, double,
                      double, const ACHAR*) const override {
    order.emplace_back("text");
    return false;
  }
  Adesk::Boolean image(const AcGiImageBGRA32& source, const AcGePoint3d& position,
                       const AcGeVector3d& u, const AcGeVector3d& v,
                       TransparencyMode) const override {
    order.emplace_back("image");
    const size_t count = static_cast<size_t>(source.width()) * source.height();
    images.push_back({source.width(),
                      source.height(),
                      {source.image(), source.image() + count},
                      position,
                      u,
                      v});
    return false;
  }

  mutable std::vector<std::string> order;
  mutable std::vector<std::vector<AcGePoint3d>> lines;
  mutable std::vector<DrawnImage> images;
};

class RecordingTraits final : public AcGiDrawableTraits {
 public:
  void setColor(Adesk::UInt16) override {}
  Adesk::UInt16 color() const override { return 7; }
  void setFillType(AcGiFillType) override {}
  AcGiFillType fillType() const override { return kAcGiFillAlways; }
  void setSelectionMarker(Adesk::LongPtr) override {}
};

class RecordingWorldDraw final : public AcGiWorldDraw {
 public:
  AcGiRegenType regenType() const override { return kAcGiStandardDisplay; }
  bool regenAbort() const override { return false; }
  AcGiSubEntityTraits& subEntityTraits() const override { return traits; }
  AcGiGeometry& rawGeometry() const override { return recorded; }
  AcGiWorldGeometry& geometry() const override { return recorded; }
  bool isDragging() const override { return false; }
  AcGiContext* context() override { return nullptr; }

  mutable RecordingGeometry recorded;
  mutable RecordingTraits traits;
};

}  // namespace tarn::test
