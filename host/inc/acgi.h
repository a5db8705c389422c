// Graphics of entities: what a drawing operation of an entity may call, and true-colour images.
// Coordinates are world coordinates in drawing units.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "acdb.h"
#include "adesk.h"
#include "dbcolor.h"
#include "dbid.h"
#include "gemat3d.h"
#include "gepnt2d.h"
#include "gepnt3d.h"
#include "gevec3d.h"
#include "rxobject.h"

class AcDbDatabase;
class AcGiContext;
class AcGiGeometry;
class AcGiPointCloud;
class AcGiViewport;
class AcGiViewportGeometry;
class AcGiWorldGeometry;

enum AcGiRegenType {
  eAcGiRegenTypeInvalid = 0,
  kAcGiStandardDisplay = 2,
  kAcGiHideOrShadeCommand,
  kAcGiShadedDisplay,
  kAcGiForExplode,
  kAcGiSaveWorldDrawForProxy
};

enum AcGiFillType { kAcGiFillAlways = 1, kAcGiFillNever };

/// One pixel of an AcGiImageBGRA32: four bytes, alpha not multiplied into the colours.
class AcGiPixelBGRA32 {
 public:
  AcGiPixelBGRA32() = default;
  AcGiPixelBGRA32(Adesk::UInt8 blue, Adesk::UInt8 green, Adesk::UInt8 red, Adesk::UInt8 alpha)
      : blue_(blue), green_(green), red_(red), alpha_(alpha) {}

  Adesk::UInt8 blue() const { return blue_; }
  Adesk::UInt8 green() const { return green_; }
  Adesk::UInt8 red() const { return red_; }
  Adesk::UInt8 alpha() const { return alpha_; }
  void setBGRA(Adesk::UInt8 blue, Adesk::UInt8 green, Adesk::UInt8 red, Adesk::UInt8 alpha) {
    *this = AcGiPixelBGRA32(blue, green, red, alpha);
  }

 private:
  Adesk::UInt8 blue_ = 0;
  Adesk::UInt8 green_ = 0;
  Adesk::UInt8 red_ = 0;
  Adesk::UInt8 alpha_ = 0;
};
static_assert(sizeof(AcGiPixelBGRA32) == 4, "pixels are copied as packed bytes");

/// A picture of width x height pixels, row 0 at the top. Made with copyImage false it only refers
/// to the caller's pixels, which must then outlive it.
class AcGiImageBGRA32 {
 public:
  AcGiImageBGRA32() = default;
  AcGiImageBGRA32(Adesk::UInt32 width, Adesk::UInt32 height, AcGiPixelBGRA32* pixels,
                  bool copyImage = true) {
    setImage(width, height, pixels, copyImage);
  }
  AcGiImageBGRA32(const AcGiImageBGRA32& other) { *this = other; }
  AcGiImageBGRA32& operator=(const AcGiImageBGRA32& other) {
    if (this != &other) {
      const bool owns = !other.copy_.empty();
      copy_ = other.copy_;
      width_ = other.width_;
      height_ = other.height_;
      pixels_ = owns ? copy_.data() : other.pixels_;
    }
    return *this;
  }

  void setImage(Adesk::UInt32 width, Adesk::UInt32 height, AcGiPixelBGRA32* pixels,
                bool copyImage = true) {
    width_ = width;
    height_ = height;
    copy_.clear();
    pixels_ = pixels;
    if (copyImage && pixels != nullptr) {
      copy_.assign(pixels, pixels + static_cast<size_t>(width) * height);
      pixels_ = copy_.data();
    }
  }
  const AcGiPixelBGRA32* image() const { return pixels_; }
  Adesk::UInt32 width() const { return width_; }
  Adesk::UInt32 height() const { return height_; }

 private:
  std::vector<AcGiPixelBGRA32> copy_;
  const AcGiPixelBGRA32* pixels_ = nullptr;
  Adesk::UInt32 width_ = 0;
  Adesk::UInt32 height_ = 0;
};

/// Colour and marking of the primitives that follow.
class AcGiSubEntityTraits {
 public:
  virtual ~AcGiSubEntityTraits() = default;
  /// Colour index: 0 by block, 1 to 255, 256 by layer.
  virtual void setColor(Adesk::UInt16 color) = 0;
  virtual Adesk::UInt16 color() const = 0;
  /// Red, green and blue in the three lowest bytes, instead of an index.
  virtual void setTrueColor(Adesk::UInt32 /*rgb*/) {}
  /// What was set last: an index, or the three bytes with kTrueColor.
  static constexpr Adesk::UInt32 kTrueColor = 0xC2000000;
  virtual Adesk::UInt32 trueColor() const { return color(); }
  /// The pattern of lines; null for lines without gaps. Its lengths are multiplied by the scale.
  virtual void setLineType(AcDbObjectId /*linetype*/) {}
  virtual AcDbObjectId lineTypeId() const { return {}; }
  virtual void setLineTypeScale(double /*scale*/) {}
  /// Hundredths of a millimetre, or kLnWtByLwDefault. What is by layer or by block is to be
  /// resolved before.
  virtual void setLineWeight(AcDb::LineWeight /*weight*/) {}
  virtual AcDb::LineWeight lineWeight() const { return AcDb::kLnWtByLwDefault; }
  /// By alpha, or solid.
  virtual void setTransparency(const AcCmTransparency& /*transparency*/) {}
  virtual AcCmTransparency transparency() const { return {}; }
  /// What follows has the colour of what the drawing stands on, until a colour is set.
  virtual void setGroundColor() {}
  /// What trueColor() gives then.
  static constexpr Adesk::UInt32 kGroundColor = 0xC8000000;
  virtual void setFillType(AcGiFillType fill) = 0;
  virtual AcGiFillType fillType() const = 0;
  virtual void setSelectionMarker(Adesk::LongPtr marker) = 0;
};

/// What setAttributes() of an entity may set.
class AcGiDrawableTraits : public AcGiSubEntityTraits {};

class AcGiContext {
 public:
  virtual ~AcGiContext() = default;
  /// True while a plot draws, not the screen.
  virtual bool isPlotGeneration() const = 0;
  virtual AcDbDatabase* database() const = 0;
};

/// Font and manner of one line of text.
class AcGiTextStyle {
 public:
  AcGiTextStyle() = default;
  explicit AcGiTextStyle(std::wstring fileName) : fileName_(std::move(fileName)) {}
  /// A font file ("txt.shx", "arial.ttf") or a family, which may have "|b1" or "|i1" behind it for
  /// bold and slanted; empty for the usual font.
  const std::wstring& fileName() const { return fileName_; }
  bool isUnderlined() const { return underlined_; }
  void setUnderlined(bool underlined) { underlined_ = underlined; }
  bool isOverlined() const { return overlined_; }
  void setOverlined(bool overlined) { overlined_ = overlined; }

 private:
  std::wstring fileName_;
  bool underlined_ = false;
  bool overlined_ = false;
};

/// The primitives. Each returns 0 to go on, anything else when the drawing was stopped.
class AcGiGeometry {
 public:
  enum TransparencyMode { kTransparencyOff, kTransparency1Bit, kTransparency8Bit };

  virtual ~AcGiGeometry() = default;

  virtual Adesk::Boolean circle(const AcGePoint3d& center, double radius,
                                const AcGeVector3d& normal) const = 0;
  /// An open line through the points.
  virtual Adesk::Boolean polyline(Adesk::UInt32 count, const AcGePoint3d* points,
                                  const AcGeVector3d* normal = nullptr,
                                  Adesk::LongPtr marker = -1) const = 0;
  /// A line without an end from the first point through the second; xline() has none at either
  /// side. Neither has extents.
  virtual Adesk::Boolean ray(const AcGePoint3d& /*first*/, const AcGePoint3d& /*second*/) const {
    return Adesk::kFalse;
  }
  virtual Adesk::Boolean xline(const AcGePoint3d& /*first*/, const AcGePoint3d& /*second*/) const {
    return Adesk::kFalse;
  }
  /// A closed area, filled unless the fill type says never.
  virtual Adesk::Boolean polygon(Adesk::UInt32 count, const AcGePoint3d* points) const = 0;
  /// Areas inside one another as one: a point is filled when an odd number of the loops is around
  /// it. `points` has those of the first loop, then those of the second.
  virtual Adesk::Boolean polyPolygon(Adesk::UInt32 loops, const Adesk::UInt32* counts,
                                     const AcGePoint3d* points) const {
    for (Adesk::UInt32 i = 0; i < loops; points += counts[i++]) {
      if (polygon(counts[i], points) != Adesk::kFalse) return Adesk::kTrue;
    }
    return Adesk::kFalse;
  }
  /// The same as text(), in a font.
  virtual Adesk::Boolean styledText(const AcGePoint3d& position, const AcGeVector3d& normal,
                                    const AcGeVector3d& direction, double height, double width,
                                    double oblique, const ACHAR* message,
                                    const AcGiTextStyle& /*style*/) const {
    return text(position, normal, direction, height, width, oblique, message);
  }
  /// One line of text; `position` is the left end of its base line, `height` that of capitals.
  virtual Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                              const AcGeVector3d& direction, double height, double width,
                              double oblique, const ACHAR* message) const = 0;
  /// A picture whose lower left corner is `position`; `u` is its whole width and `v` its whole
  /// height. The pixels are copied before the call returns.
  virtual Adesk::Boolean image(const AcGiImageBGRA32& source, const AcGePoint3d& position,
                               const AcGeVector3d& u, const AcGeVector3d& v,
                               TransparencyMode mode = kTransparency8Bit) const = 0;
  /// A cloud whose coordinates (x, y) lie at `origin` + x * `u` + y * `v`. Graphics that know no
  /// clouds draw nothing.
  virtual Adesk::Boolean pointCloud(const std::shared_ptr<const AcGiPointCloud>& /*cloud*/,
                                    const AcGePoint3d& /*origin*/, const AcGeVector3d& /*u*/,
                                    const AcGeVector3d& /*v*/) const {
    return Adesk::kFalse;
  }
};

class AcGiWorldGeometry : public AcGiGeometry {};
class AcGiViewportGeometry : public AcGiGeometry {};

class AcGiCommonDraw {
 public:
  virtual ~AcGiCommonDraw() = default;
  virtual AcGiRegenType regenType() const = 0;
  /// True when the user wants the regeneration stopped.
  virtual bool regenAbort() const = 0;
  virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
  virtual AcGiGeometry& rawGeometry() const = 0;
  virtual bool isDragging() const = 0;
  virtual AcGiContext* context() = 0;
};

class AcGiWorldDraw : public AcGiCommonDraw {
 public:
  virtual AcGiWorldGeometry& geometry() const = 0;
};

/// The viewport that is drawn to. Sizes in drawing units and pixels of the screen.
class AcGiViewport {
 public:
  virtual ~AcGiViewport() = default;
  virtual double width() const = 0;
  virtual double height() const = 0;
  virtual AcGePoint3d centerPoint() const = 0;
  /// Pixels that a unit square at a point covers along x and y.
  virtual void getNumPixelsInUnitSquare(const AcGePoint3d& point, AcGePoint2d& pixels,
                                        bool perspective = true) const = 0;
};

class AcGiViewportDraw : public AcGiCommonDraw {
 public:
  virtual AcGiViewport& viewport() const = 0;
  virtual AcGiViewportGeometry& geometry() const = 0;
};
