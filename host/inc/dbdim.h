// Dimensions and leaders.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "dbents.h"

/// How a dimension without a block looks, by its style; lengths in drawing units.
struct AcDbDimensionLook {
  double textHeight = 2.5;
  double arrowSize = 2.5;
  double offset = 0.625;  ///< from what is measured to its line
  double beyond = 1.25;   ///< of that line, behind the dimension's
  double factor = 1;      ///< of what is measured
  short decimals = 2;
  bool trimsZeros = false;  ///< at the end
};

/// A dimension of any kind. It is seen as the block that was made for it, or, without one, as its
/// points say.
class ACADHOST_EXPORT AcDbDimension : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimension);
  /// By the group codes of drawing files from 10 on: 0 the line, 1 the text, 2 where the block's
  /// origin lies, 3 and 4 what is measured, 5 and 6 more of it.
  using Points = std::array<AcGePoint3d, 7>;
  struct Values {
    AcDbObjectId block;
    short type = 0;   ///< 0 rotated to 6 ordinate, with the flags of drawing files
    Points points{};  ///< 1, 2 and 6 in the own system, the others in the world
    AcGeVector3d normal{0, 0, 1};
    double rotation = 0;      ///< of a rotated one, radians
    double textRotation = 0;  ///< where the file says one
    double direction = 0;     ///< of the horizontal, where the file says one
    std::wstring text;        ///< instead of what is measured
    std::wstring style;
    AcDbDimensionLook look;
  };
  AcDbDimension() = default;

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
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  /// Any movement; turning and scaling change the block, so eNotApplicable when another dimension
  /// is seen as the same one.
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  AcGeMatrix3d blockToWorld() const;
  bool sharesBlock() const;

  Values values_;
};

/// A line that points at something with an arrow at its first point.
class ACADHOST_EXPORT AcDbLeader : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLeader);
  struct Values {
    std::vector<AcGePoint3d> vertices;  ///< in the world
    AcGeVector3d normal{0, 0, 1};
    bool hasArrow = true;
    bool isSpline = false;
    double arrowSize = 0;  ///< length, by the style
    std::wstring style;
  };
  AcDbLeader() = default;

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
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                        const AcGeVector3d& offset) override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  Values values_;
};
