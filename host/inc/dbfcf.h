// Tolerances: frames with fields for what is allowed.
#pragma once

#include <string>

#include "dbvalued.h"

struct AcDbFcfValues {
  AcGePoint3d location;  ///< left end of the first row, half way up
  AcGeVector3d normal{0, 0, 1};
  AcGeVector3d direction{1, 0, 0};
  /// Rows end with "^J", fields with "%%v"; letters of the font "gdt" are signs.
  std::wstring text;
  std::wstring style;
  double textHeight = 2.5;  ///< by the style
};

class ACADHOST_EXPORT AcDbFcf : public AcDbValuedEntity<AcDbFcfValues> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbFcf);

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
};
