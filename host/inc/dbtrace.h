// Filled triangles and quadrangles, and faces in space.
#pragma once

#include <array>

#include "dbents.h"

/// Four points in the entity's own system; the third and fourth lie behind the first and second, so
/// that the rim goes 1, 2, 4, 3. A triangle has the third one twice.
class ACADHOST_EXPORT AcDbTrace : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTrace);
  using Points = std::array<AcGePoint3d, 4>;
  AcDbTrace() = default;

  /// Valid until they are changed.
  const Points& ownPoints() const;
  AcGeVector3d normal() const;
  Acad::ErrorStatus setOwn(const Points& ownPoints, const AcGeVector3d& normal);

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

  Points points_{};
  AcGeVector3d normal_{0, 0, 1};
};

class ACADHOST_EXPORT AcDbSolid : public AcDbTrace {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSolid);
  AcDbSolid() = default;
};

/// Three or four points of the world, one after the other along the rim, of which some edges may be
/// unseen.
class ACADHOST_EXPORT AcDbFace : public AcDbTrace {
 public:
  ACRX_DECLARE_MEMBERS(AcDbFace);
  AcDbFace() = default;

  /// Bit 0 hides the edge from the first point to the second, bit 3 the one back to the first.
  short hiddenEdges() const;
  void setHiddenEdges(short edges);

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  short hidden_ = 0;
};
