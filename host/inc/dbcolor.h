// Colours and transparency of entities.
#pragma once

#include "acdb.h"

class AcCmEntityColor {
 public:
  enum ColorMethod { kByLayer = 0xC0, kByBlock = 0xC1, kByColor = 0xC2, kByACI = 0xC3 };
};

/// By layer, by block, one of the 255 colours, or red, green and blue. The last has the index of
/// the colour that stands in for it where only indices are known.
class AcCmColor {
 public:
  AcCmEntityColor::ColorMethod colorMethod() const {
    if (isRgb_) return AcCmEntityColor::kByColor;
    return index_ == 256 ? AcCmEntityColor::kByLayer
           : index_ == 0 ? AcCmEntityColor::kByBlock
                         : AcCmEntityColor::kByACI;
  }
  bool isByColor() const { return isRgb_; }
  /// 0 by block, 1 to 255, 256 by layer.
  Adesk::UInt16 colorIndex() const { return index_; }
  /// eInvalidInput above 256.
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 index) {
    if (index > 256) return Acad::eInvalidInput;
    index_ = index;
    isRgb_ = false;
    return Acad::eOk;
  }
  /// Keeps the index as the one that stands in.
  Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    if (index_ == 0 || index_ == 256) index_ = 7;
    isRgb_ = true;
    red_ = red;
    green_ = green;
    blue_ = blue;
    return Acad::eOk;
  }
  Adesk::UInt8 red() const { return red_; }
  Adesk::UInt8 green() const { return green_; }
  Adesk::UInt8 blue() const { return blue_; }

 private:
  Adesk::UInt16 index_ = 256;
  bool isRgb_ = false;
  Adesk::UInt8 red_ = 0;
  Adesk::UInt8 green_ = 0;
  Adesk::UInt8 blue_ = 0;
};

/// By layer, by block, or an alpha of 0 (not seen) to 255 (solid).
class AcCmTransparency {
 public:
  AcCmTransparency() = default;
  explicit AcCmTransparency(Adesk::UInt8 alpha) { setAlpha(alpha); }
  bool isByLayer() const { return bits_ >> 24 == 0; }
  bool isByBlock() const { return bits_ >> 24 == 1; }
  bool isByAlpha() const { return bits_ >> 24 == 2; }
  Adesk::UInt8 alpha() const { return isByAlpha() ? bits_ & 0xFFU : 0xFFU; }
  void setAlpha(Adesk::UInt8 alpha) { bits_ = 0x02000000U | alpha; }
  /// As one number: the method in the highest byte, the alpha in the lowest.
  Adesk::UInt32 serializeOut() const { return bits_; }
  /// A number that is none of these is taken as by layer.
  void serializeIn(Adesk::UInt32 bits) { bits_ = bits >> 24 <= 2 ? bits & 0x030000FFU : 0U; }

 private:
  Adesk::UInt32 bits_ = 0;
};
