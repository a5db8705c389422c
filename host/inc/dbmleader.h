// Leaders with several lines to one content.
#pragma once

#include <string>
#include <vector>

#include "dbvalued.h"

/// Points stand in the world. Colours are the raw numbers of drawing files: 0xC0 by layer, 0xC1 by
/// block, 0xC2 red, green and blue, 0xC3 an index, in the highest byte.
struct AcDbMLeaderValues {
  static constexpr Adesk::Int32 kByBlock = -1056964608;
  struct Line {
    std::vector<AcGePoint3d> vertices;  ///< the first is where it points
    std::vector<AcGePoint3d> breaks;
  };
  /// Lines that end at one side of the content, and the short line from there.
  struct Leader {
    bool hasLast = false;
    bool hasDogleg = false;
    AcGePoint3d last;  ///< where its lines end
    AcGeVector3d dogleg{1, 0, 0};
    double doglegLength = 0;
    std::vector<AcGePoint3d> breaks;
    std::vector<Line> lines;
  };
  struct Text {
    std::wstring contents;
    AcDbObjectId style;
    AcGePoint3d location;
    AcGeVector3d normal{0, 0, 1};
    AcGeVector3d direction{1, 0, 0};
    double rotation = 0;
    double width = 0;
    double definedHeight = 0;
    double spacing = 1;
    double columnWidth = 0;
    double columnGutter = 0;
    std::vector<double> columnHeights;
    Adesk::Int32 color = kByBlock;
    short alignment = 1;  ///< 1 left, 2 centre, 3 right
  };
  struct Block {
    AcDbObjectId id;
    AcGePoint3d position;
    AcGeVector3d normal{0, 0, 1};
    AcGeVector3d scale{1, 1, 1};
    double rotation = 0;
    Adesk::Int32 color = kByBlock;
    std::vector<double> matrix;  ///< none, or 16
  };

  double scale = 1;
  AcGePoint3d base;
  double textHeight = 4;
  double arrowSize = 4;
  double gap = 2;
  bool hasText = false;
  Text text;
  bool hasBlock = false;
  Block block;
  AcGePoint3d planeOrigin;
  AcGeVector3d planeX{1, 0, 0};
  AcGeVector3d planeY{0, 1, 0};
  std::vector<Leader> leaders;
  // What stands behind the content again.
  short kind = 1;  ///< of the lines: 0 none, 1 straight, 2 curves
  Adesk::Int32 lineColor = kByBlock;
  AcDbObjectId arrow;  ///< a block; null for the usual one
  bool hasDogleg = true;
  double usualDogleg = 0;
  double usualArrow = 0;
  double usualScale = 1;
  double blockRotation = 0;
  AcGeVector3d blockScale{1, 1, 1};
};

class ACADHOST_EXPORT AcDbMLeader : public AcDbValuedEntity<AcDbMLeaderValues> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMLeader);

 protected:
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  /// Ends of the lines, and where the text or the block stands.
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                      const AcGeMatrix3d& viewXform, AcGePoint3dArray& snapPoints,
                                      AcDbIntArray& geomIds) const override;
  /// Where it points.
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                        const AcGeVector3d& offset) override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  void drawLine(AcGiWorldDraw& draw, const Values::Leader& leader, const Values::Line& line) const;
  void drawArrow(AcGiWorldDraw& draw, const AcGePoint3d& tip, const AcGePoint3d& next) const;
  void drawText(AcGiWorldDraw& draw) const;
  void drawBlock(AcGiWorldDraw& draw) const;
  std::vector<AcGePoint3d*> tips();
};
