// Splines.
#pragma once

#include <vector>

#include "dbents.h"

/// A curve in the world: by knots and control points, or, when it has none of these, through its
/// fit points.
class ACADHOST_EXPORT AcDbSpline : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSpline);
  struct Values {
    short flags = 0;  ///< 1 closed, 2 periodic, 4 rational, 8 flat
    short degree = 3;
    std::vector<double> knots;
    std::vector<AcGePoint3d> control;
    std::vector<double> weights;  ///< empty for equal ones
    std::vector<AcGePoint3d> fit;
    AcGeVector3d startTangent{0, 0, 0};
    AcGeVector3d endTangent{0, 0, 0};
  };
  AcDbSpline() = default;

  /// Valid until they are changed.
  const Values& values() const;
  Acad::ErrorStatus setValues(Values values);

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  /// The fit points, else the control points.
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                        const AcGeVector3d& offset) override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  std::vector<AcGePoint3d> points() const;

  Values values_;
};
