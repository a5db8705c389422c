// Inserted blocks.
#pragma once

#include <string>
#include <vector>

#include "dbents.h"
#include "dbtext.h"

/// A text that belongs to an insertion, with a layer and a colour of its own.
struct AcDbAttributeLine : AcDbTextLine {
  AcDbObjectId layer;
  Adesk::UInt16 color = 256;    ///< as AcDbEntity::colorIndex()
  Adesk::Int32 trueColor = -1;  ///< 0xRRGGBB; negative for the index
  bool hidden = false;          ///< kept, but not seen
  std::wstring tag;             ///< its name
};

/// A block drawn at a place, once or in rows and columns. Position and angles stand in the own
/// system of the entity.
class ACADHOST_EXPORT AcDbBlockReference : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockReference);
  AcDbBlockReference() = default;

  struct Placement {
    AcGePoint3d position;
    AcGeVector3d normal{0, 0, 1};
    AcGeVector3d scale{1, 1, 1};
    double rotation = 0;
    short columns = 1;
    short rows = 1;
    double columnSpacing = 0;
    double rowSpacing = 0;
  };
  AcDbObjectId blockTableRecord() const;
  Acad::ErrorStatus setBlockTableRecord(AcDbObjectId block);
  const Placement& placement() const;
  Acad::ErrorStatus setPlacement(const Placement& placement);
  /// Texts that belong to this insertion; valid until they are changed.
  const std::vector<AcDbAttributeLine>& attributes() const;
  Acad::ErrorStatus setAttributes(std::vector<AcDbAttributeLine> attributes);
  /// From the block to the world, for the first of the rows and columns.
  AcGeMatrix3d blockTransform() const;

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
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  AcDbObjectId block_;
  Placement placement_;
  std::vector<AcDbAttributeLine> attributes_;
};
