// Records what an entity draws into a display list.
#pragma once

#include <cstdint>

#include "acgi.h"
#include "dbmain.h"
#include "host/graphics/displaylist.h"

namespace tarn::host {

class RecordingTraits;

/// A plain geometry that converts and appends. Curves become lines here.
class ACADHOST_EXPORT RecordingGeometry : public AcGiWorldGeometry {
 public:
  RecordingGeometry(DisplayList& list, const RecordingTraits& traits)
      : list_(list), traits_(traits) {}

  Adesk::Boolean circle(const AcGePoint3d& center, double radius,
                        const AcGeVector3d& normal) const override;
  Adesk::Boolean ray(const AcGePoint3d& first, const AcGePoint3d& second) const override;
  Adesk::Boolean xline(const AcGePoint3d& first, const AcGePoint3d& second) const override;
  Adesk::Boolean polyline(Adesk::UInt32 count, const AcGePoint3d* points,
                          const AcGeVector3d* normal, Adesk::LongPtr marker) const override;
  Adesk::Boolean polygon(Adesk::UInt32 count, const AcGePoint3d* points) const override;
  Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, double height, double width, double oblique,
                      const ACHAR* message) const override;
  Adesk::Boolean polyPolygon(Adesk::UInt32 loops, const Adesk::UInt32* counts,
                             const AcGePoint3d* points) const override;
  Adesk::Boolean styledText(const AcGePoint3d& position, const AcGeVector3d& normal,
                            const AcGeVector3d& direction, double height, double width,
                            double oblique, const ACHAR* message,
                            const AcGiTextStyle& style) const override;
  Adesk::Boolean image(const AcGiImageBGRA32& source, const AcGePoint3d& position,
                       const AcGeVector3d& u, const AcGeVector3d& v,
                       TransparencyMode mode) const override;
  Adesk::Boolean pointCloud(const std::shared_ptr<const AcGiPointCloud>& cloud,
                            const AcGePoint3d& origin, const AcGeVector3d& u,
                            const AcGeVector3d& v) const override;

 private:
  /// Without points, in the colour that is set.
  LineItem& addLine() const;

  mutable ListWriter list_;
  const RecordingTraits& traits_;
};

/// Colour by layer and by block are resolved with the two colours given at the start. Colours are
/// indices or true colours as in AcGiSubEntityTraits::trueColor().
class ACADHOST_EXPORT RecordingTraits : public AcGiDrawableTraits {
 public:
  /// `drawingScale` is that of all patterns of lines.
  RecordingTraits(Adesk::UInt32 layerColor, Adesk::UInt32 entityColor, double drawingScale = 1)
      : layerColor_(layerColor), drawingScale_(drawingScale) {
    if ((entityColor & kTrueColor) == kTrueColor) {
      color_ = entityColor;
    } else {
      RecordingTraits::setColor(static_cast<Adesk::UInt16>(entityColor));
    }
  }
  void setColor(Adesk::UInt16 color) override {
    color_ = color == 256 ? layerColor_ : (color == 0 || color > 256 ? 7 : color);
  }
  /// 7 for a true colour.
  Adesk::UInt16 color() const override {
    return color_ > 255 ? Adesk::UInt16{7} : static_cast<Adesk::UInt16>(color_);
  }
  void setTrueColor(Adesk::UInt32 rgb) override { color_ = kTrueColor | (rgb & 0xFFFFFF); }
  Adesk::UInt32 trueColor() const override { return color_; }
  void setLineType(AcDbObjectId linetype) override;
  AcDbObjectId lineTypeId() const override { return linetype_; }
  void setLineTypeScale(double scale) override;
  const std::shared_ptr<const DashPattern>& dashes() const { return dashes_; }
  void setLineWeight(AcDb::LineWeight weight) override { weight_ = weight; }
  AcDb::LineWeight lineWeight() const override { return weight_; }
  void setTransparency(const AcCmTransparency& transparency) override { seen_ = transparency; }
  AcCmTransparency transparency() const override { return seen_; }
  void setGroundColor() override { color_ = kGroundColor; }
  void setFillType(AcGiFillType fill) override { fill_ = fill; }
  AcGiFillType fillType() const override { return fill_; }
  void setSelectionMarker(Adesk::LongPtr) override {}

 private:
  Adesk::UInt32 layerColor_;
  Adesk::UInt32 color_ = 7;
  double drawingScale_ = 1;
  double scale_ = 1;
  AcDbObjectId linetype_;
  std::shared_ptr<const DashPattern> dashes_;
  AcDb::LineWeight weight_ = AcDb::kLnWtByLwDefault;
  AcCmTransparency seen_;
  AcGiFillType fill_ = kAcGiFillAlways;
};

class ACADHOST_EXPORT RecordingContext : public AcGiContext {
 public:
  RecordingContext(AcDbDatabase* database, bool plots) : database_(database), plots_(plots) {}
  bool isPlotGeneration() const override { return plots_; }
  AcDbDatabase* database() const override { return database_; }

 private:
  AcDbDatabase* database_;
  bool plots_;
};

/// The draw object handed to worldDraw(): everything goes to `list`. The list, and what the abort
/// function refers to, must outlive it.
class ACADHOST_EXPORT WorldDrawRecorder : public AcGiWorldDraw {
 public:
  using AbortFunction = bool (*)();

  WorldDrawRecorder(DisplayList& list, AcDbDatabase* database, Adesk::UInt32 layerColor,
                    Adesk::UInt32 entityColor, AbortFunction abortWanted = nullptr,
                    bool plots = false)
      : traits_(layerColor, entityColor, database != nullptr ? database->ltscale() : 1),
        geometry_(list, traits_),
        context_(database, plots),
        abortWanted_(abortWanted) {}

  AcGiRegenType regenType() const override { return kAcGiStandardDisplay; }
  bool regenAbort() const override { return abortWanted_ != nullptr && abortWanted_(); }
  AcGiDrawableTraits& subEntityTraits() const override { return traits_; }
  AcGiGeometry& rawGeometry() const override { return geometry_; }
  bool isDragging() const override { return false; }
  AcGiContext* context() override { return &context_; }
  AcGiWorldGeometry& geometry() const override { return geometry_; }

 private:
  mutable RecordingTraits traits_;
  mutable RecordingGeometry geometry_;
  RecordingContext context_;
  AbortFunction abortWanted_;
};

/// A copy of the pixels for the renderer: colours multiplied by alpha, alpha 0 all zero. kOff makes
/// every pixel opaque, k1Bit those with alpha of 128 and more. Null when the picture is empty.
ACADHOST_EXPORT QImage premultipliedImage(const AcGiImageBGRA32& source,
                                          AcGiGeometry::TransparencyMode mode);

}  // namespace tarn::host
