// Points, circles, arcs and ellipses.
#pragma once

#include "dbents.h"

/// A point of the drawing.
class ACADHOST_EXPORT AcDbPoint : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPoint);
  AcDbPoint() = default;
  explicit AcDbPoint(const AcGePoint3d& position) : position_(position) {}

  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  using AcDbEntity::setThickness;
  using AcDbEntity::thickness;

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  AcGePoint3d position_;
};

/// A circle, or an arc of one: counter-clockwise from the start angle to the end angle, seen
/// against the normal. The centre is kept in the entity's own coordinate system (see
/// entityToWorld()), as drawing files have it; angles are radians from that system's x axis.
class ACADHOST_EXPORT AcDbCircle : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbCircle);
  AcDbCircle() = default;
  AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);

  AcGePoint3d center() const;
  Acad::ErrorStatus setCenter(const AcGePoint3d& center);
  double radius() const;
  /// eInvalidInput unless above 0.
  Acad::ErrorStatus setRadius(double radius);
  AcGeVector3d normal() const;
  /// The centre in the entity's own system, and all three at once.
  AcGePoint3d ownCenter() const;
  void setOwn(const AcGePoint3d& ownCenter, const AcGeVector3d& normal, double radius);
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
  /// In the world, at an angle of the own system.
  AcGePoint3d pointAt(double angle) const;

 private:
  AcGePoint3d center_;
  AcGeVector3d normal_{0, 0, 1};
  double radius_ = 1;
};

class ACADHOST_EXPORT AcDbArc : public AcDbCircle {
 public:
  ACRX_DECLARE_MEMBERS(AcDbArc);
  AcDbArc() = default;
  AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
          double endAngle);

  double startAngle() const;
  double endAngle() const;
  Acad::ErrorStatus setStartAngle(double radians);
  Acad::ErrorStatus setEndAngle(double radians);

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
  double start_ = 0;
  double end_ = 0;
};

/// An ellipse or a part of one, in world coordinates: from the start to the end parameter
/// (radians).
class ACADHOST_EXPORT AcDbEllipse : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEllipse);
  AcDbEllipse() = default;

  AcGePoint3d center() const;
  AcGeVector3d majorAxis() const;
  AcGeVector3d normal() const;
  double radiusRatio() const;
  double startParam() const;
  double endParam() const;
  Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& normal,
                        const AcGeVector3d& majorAxis, double radiusRatio, double startParam,
                        double endParam);

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  AcGePoint3d center_;
  AcGeVector3d normal_{0, 0, 1};
  AcGeVector3d major_{1, 0, 0};
  double ratio_ = 1;
  double start_ = 0;
  double end_ = 6.283185307179586;
};
