// Nets of faces in space, drawn by their edges.
#pragma once

#include <vector>

#include "dbvalued.h"

struct AcDbNetValues {
  std::vector<AcGePoint3d> points;  ///< in the world, as they follow one another in the file
  /// Two places among the points for each edge that is seen.
  std::vector<Adesk::Int32> edges;
};

/// What all kinds have in common.
class ACADHOST_EXPORT AcDbNet : public AcDbValuedEntity<AcDbNetValues> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbNet);

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                        const AcGeVector3d& offset) override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
};

/// Rows and columns of vertices.
class ACADHOST_EXPORT AcDbPolygonMesh : public AcDbNet {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolygonMesh);
};

/// Faces of up to four vertices.
class ACADHOST_EXPORT AcDbPolyFaceMesh : public AcDbNet {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolyFaceMesh);
};

/// Faces of any number of vertices; how they are smoothed stays in the file and is not drawn.
class ACADHOST_EXPORT AcDbSubDMesh : public AcDbNet {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSubDMesh);
};
