// Entities: objects that are seen in the drawing.
#pragma once

#include "dbcolor.h"
#include "dbextents.h"
#include "dbmain.h"
#include "geintarr.h"
#include "gemat3d.h"
#include "gepnt3d.h"
#include "gept3dar.h"

class AcGiDrawableTraits;
class AcGiViewportDraw;
class AcGiWorldDraw;

namespace tarn::host {
class EntityAccess;
}

/// Coordinates are drawing units in the world system.
class ACADHOST_EXPORT AcDbEntity : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEntity);
  AcDbEntity();
  ~AcDbEntity() override;

  /// The block that owns the entity.
  AcDbObjectId blockId() const { return ownerId(); }
  AcDbObjectId layerId() const;
  /// The layer's name; freed by the caller with acutDelString.
  ACHAR* layer() const;
  /// eKeyNotFound when the drawing (or the working one) has no such layer.
  Acad::ErrorStatus setLayer(const ACHAR* name, Adesk::Boolean doSubents = Adesk::kTrue);
  Acad::ErrorStatus setLayer(AcDbObjectId id, Adesk::Boolean doSubents = Adesk::kTrue);
  /// 0 by block, 1 to 255, 256 by layer.
  Adesk::UInt16 colorIndex() const;
  /// eInvalidInput above 256.
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 color, Adesk::Boolean doSubents = Adesk::kTrue);
  AcCmColor color() const;
  Acad::ErrorStatus setColor(const AcCmColor& color, Adesk::Boolean doSubents = Adesk::kTrue,
                             AcDbDatabase* database = nullptr);
  AcCmTransparency transparency() const;
  Acad::ErrorStatus setTransparency(const AcCmTransparency& transparency,
                                    Adesk::Boolean doSubents = Adesk::kTrue);
  /// Null for an entity whose layer says it.
  AcDbObjectId linetypeId() const;
  /// The name of the line type; freed by the caller with acutDelString.
  ACHAR* linetype() const;
  /// eKeyNotFound when the drawing (or the working one) has no such line type.
  Acad::ErrorStatus setLinetype(const ACHAR* name, Adesk::Boolean doSubents = Adesk::kTrue);
  Acad::ErrorStatus setLinetype(AcDbObjectId id, Adesk::Boolean doSubents = Adesk::kTrue);
  double linetypeScale() const;
  /// eInvalidInput unless above 0.
  Acad::ErrorStatus setLinetypeScale(double scale, Adesk::Boolean doSubents = Adesk::kTrue);
  AcDb::LineWeight lineWeight() const;
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, Adesk::Boolean doSubents = Adesk::kTrue);
  AcDb::Visibility visibility() const;
  Acad::ErrorStatus setVisibility(AcDb::Visibility visibility,
                                  Adesk::Boolean doSubents = Adesk::kTrue);
  /// Layer "0" (or the current layer) and colour of the database for a new entity.
  void setDatabaseDefaults(AcDbDatabase* database = nullptr);

  /// Graphics for all viewports; false asks for viewportDraw() as well.
  Adesk::Boolean worldDraw(AcGiWorldDraw* draw);
  void viewportDraw(AcGiViewportDraw* draw);
  Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits);
  /// Draws this entity again now, without a regeneration of the drawing. Open it first.
  Acad::ErrorStatus draw();
  /// Marks the graphics as changed, so that the entity is drawn again when it is closed.
  void recordGraphicsModified(Adesk::Boolean setModified = Adesk::kTrue);

  /// eInvalidExtents when the entity has none.
  Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
  Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                   const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                   const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                   AcDbIntArray& geomIds) const;
  Acad::ErrorStatus getGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                  AcDbIntArray& geomIds) const;
  /// Moves the grips of these indices; eNotApplicable when the entity cannot be stretched.
  Acad::ErrorStatus moveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
  /// eNotApplicable when the entity has no place of its own to move.
  Acad::ErrorStatus transformBy(const AcGeMatrix3d& transform);
  /// A transformed copy that belongs to the caller.
  Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const;

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  virtual Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw);
  virtual void subViewportDraw(AcGiViewportDraw* draw);
  virtual Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits);
  virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const;
  virtual Acad::ErrorStatus subGetOsnapPoints(
      AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark, const AcGePoint3d& pickPoint,
      const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
      AcDbIntArray& geomIds) const;
  virtual Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                             AcDbIntArray& geomIds) const;
  virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset);
  virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform);
  virtual Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform,
                                                  AcDbEntity*& copy) const;

  /// How far the entity reaches along its normal, for the classes that have such a thing.
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);

 private:
  friend class tarn::host::EntityAccess;
  struct Properties {
    AcDbObjectId linetype;  ///< null by layer
    double linetypeScale = 1;
    double thickness = 0;
    Adesk::Int32 trueColor = -1;  ///< 0xRRGGBB; negative for an index
    AcCmTransparency transparency;
    Adesk::Int16 lineWeight = AcDb::kLnWtByLayer;
  };
  void setProperties(const Properties& properties);

  AcDbObjectId layerId_;
  Properties properties_;
  Adesk::UInt16 color_ = 256;
  AcDb::Visibility visibility_ = AcDb::kVisible;
};

/// A straight line.
class ACADHOST_EXPORT AcDbLine : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLine);
  AcDbLine() = default;
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : start_(start), end_(end) {}

  AcGePoint3d startPoint() const;
  AcGePoint3d endPoint() const;
  Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
  Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);
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
  AcGePoint3d start_;
  AcGePoint3d end_;
};

#include "dbviewport.h"
