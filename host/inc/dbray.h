// Lines without an end.
#pragma once

#include "dbvalued.h"

struct AcDbEndlessLineValues {
  AcGePoint3d base;
  AcGeVector3d direction{1, 0, 0};
};

/// What both kinds have in common. Neither has extents.
class ACADHOST_EXPORT AcDbEndlessLine : public AcDbValuedEntity<AcDbEndlessLineValues> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEndlessLine);

 protected:
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
};

/// From its base on.
class ACADHOST_EXPORT AcDbRay : public AcDbEndlessLine {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRay);

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
};

/// Through its base to both sides.
class ACADHOST_EXPORT AcDbXline : public AcDbEndlessLine {
 public:
  ACRX_DECLARE_MEMBERS(AcDbXline);

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
};
