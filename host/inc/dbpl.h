// Polylines: flat ones with arcs, and ones in space.
#pragma once

#include <vector>

#include "dbents.h"

namespace tarn::host {
struct WideSegment;
}

/// One vertex. The bulge is the tangent of a quarter of the angle of the arc to the next vertex,
/// positive counter-clockwise.
struct AcDbPolylineVertex {
  AcGePoint3d point;  ///< z counts only in space
  double bulge = 0;
  double startWidth = 0;
  double endWidth = 0;
  short flags = 0;  ///< of a vertex of its own: 16 is a point of a spline's frame, not drawn
};

/// A polyline. A flat one has its vertices in its own system (see entityToWorld()), at its
/// elevation; one in space has them in the world.
class ACADHOST_EXPORT AcDbPolyline : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolyline);
  AcDbPolyline() = default;

  unsigned numVerts() const;
  const std::vector<AcDbPolylineVertex>& vertices() const;
  Acad::ErrorStatus setVertices(std::vector<AcDbPolylineVertex> vertices);
  /// At the end.
  Acad::ErrorStatus addVertex(double x, double y, double bulge = 0);
  bool isClosed() const;
  Acad::ErrorStatus setClosed(Adesk::Boolean closed);
  bool isInSpace() const;
  Acad::ErrorStatus setInSpace(bool inSpace);
  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  using AcDbEntity::setThickness;
  using AcDbEntity::thickness;

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
  /// In the own system, from vertex to vertex.
  std::vector<tarn::host::WideSegment> segments() const;
  /// In the own system, along the middle.
  std::vector<AcGePoint3d> middle() const;
  bool isWide() const;
  /// Calls piece(from, to) for what is drawn from vertex to vertex, and lone(vertex) where there is
  /// but one.
  template <typename Piece, typename Lone>
  void forEachPiece(const Piece& piece, const Lone& lone) const;
  AcGePoint3d ownPoint(const AcDbPolylineVertex& vertex) const;
  AcGePoint3d worldPoint(const AcDbPolylineVertex& vertex) const;

  std::vector<AcDbPolylineVertex> vertices_;
  AcGeVector3d normal_{0, 0, 1};
  double elevation_ = 0;
  bool closed_ = false;
  bool inSpace_ = false;
};
