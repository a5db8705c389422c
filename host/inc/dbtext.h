// Texts of one line and of several.
#pragma once

#include <string>
#include <vector>

#include "dbents.h"

/// How one line of text lies in the own system of its entity. Angles in radians.
struct ACADHOST_EXPORT AcDbTextLine {
  AcGePoint3d position;   ///< left end of the base line
  AcGePoint3d alignment;  ///< what the text is aligned to; only with an alignment
  AcGeVector3d normal{0, 0, 1};
  double height = 1;
  double rotation = 0;
  double widthFactor = 1;
  double oblique = 0;
  short horizontal = 0;  ///< 0 left, 1 centre, 2 right, 3 aligned, 4 middle, 5 fit
  short vertical = 0;    ///< 0 base line, 1 bottom, 2 middle, 3 top
  short generation = 0;  ///< 2 backward, 4 upside down
  AcDbObjectId style;    ///< null for the drawing's standard one
  std::wstring text;

  /// The same text from its left end on, without an alignment; `width` is what it measures.
  AcDbTextLine placed(double width) const;
  void draw(AcGiWorldDraw& draw) const;
  void transformBy(const AcGeMatrix3d& transform);
  void write(AcDbDwgFiler& filer) const;
  void read(AcDbDwgFiler& filer);
};

class ACADHOST_EXPORT AcDbText : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbText);
  AcDbText() = default;
  AcDbText(const AcGePoint3d& position, const ACHAR* text, double height, double rotation);

  /// All of it; valid until it is changed.
  const AcDbTextLine& line() const;
  Acad::ErrorStatus setLine(const AcDbTextLine& line);
  const ACHAR* textString() const { return line().text.c_str(); }
  Acad::ErrorStatus setTextString(const ACHAR* text);
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
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  AcDbTextLine line_;
};

/// Columns of a text of several lines; none below two of them.
struct AcDbMTextColumns {
  short count = 0;
  double width = 0;             ///< of each
  double gap = 0;               ///< between two
  double height = 0;            ///< of each without one of its own
  std::vector<double> heights;  ///< 0 for one that takes what is left
};

/// Several lines, in world coordinates.
class ACADHOST_EXPORT AcDbMText : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMText);
  AcDbMText() = default;

  AcGePoint3d location() const;
  Acad::ErrorStatus setLocation(const AcGePoint3d& location);
  /// With its formatting; valid until it is changed.
  const std::wstring& contents() const;
  Acad::ErrorStatus setContents(const ACHAR* contents);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  AcGeVector3d direction() const;
  Acad::ErrorStatus setDirection(const AcGeVector3d& direction);
  double textHeight() const;
  Acad::ErrorStatus setTextHeight(double height);
  /// 1 top left to 9 bottom right, by rows.
  short attachment() const;
  Acad::ErrorStatus setAttachment(short attachment);
  /// Of the lines; longer ones are wrapped. 0 wraps none.
  double width() const;
  Acad::ErrorStatus setWidth(double width);
  /// Null for the drawing's standard one.
  AcDbObjectId textStyle() const;
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);
  /// 1 is the usual distance of lines, 5/3 of the height.
  double lineSpacingFactor() const;
  Acad::ErrorStatus setLineSpacingFactor(double factor);
  const AcDbMTextColumns& columns() const;
  Acad::ErrorStatus setColumns(AcDbMTextColumns columns);

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
  AcGePoint3d location_;
  AcGeVector3d normal_{0, 0, 1};
  AcGeVector3d direction_{1, 0, 0};
  double height_ = 1;
  double spacing_ = 1;
  double width_ = 0;
  AcDbObjectId style_;
  short attachment_ = 1;
  std::wstring contents_;
  AcDbMTextColumns columns_;
};
