// Hatches: areas filled with a colour or with a pattern of lines.
#pragma once

#include <string>
#include <vector>

#include "dbents.h"

/// A piece of a rim. Points and angles stand in the own system of the hatch, at height 0; angles
/// are radians. Turning clockwise, both are those of the mirror image: the curve goes from -start
/// to -end.
struct AcDbHatchEdge {
  enum Kind : short { kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4 };
  short kind = kLine;
  AcGePoint3d first;   ///< start, or centre
  AcGePoint3d second;  ///< end, or the end of the long axis from the centre
  double ratio = 1;    ///< radius of an arc; short by long axis of an ellipse
  double start = 0;
  double end = 0;
  bool counterClockwise = true;
  short degree = 3;
  bool rational = false;
  bool periodic = false;
  std::vector<double> knots;
  std::vector<AcGePoint3d> control;  ///< z is the weight
  bool hasFit = false;               ///< the number of fit points stands in the file
  std::vector<AcGePoint3d> fit;
  std::vector<AcGePoint3d> tangents;  ///< none, or two
};

/// A rim: a polyline whose z are bulges, or edges.
struct AcDbHatchLoop {
  Adesk::Int32 flags = 0;  ///< 2 for a polyline
  bool hasBulges = false;
  bool closed = true;
  std::vector<AcGePoint3d> vertices;
  std::vector<AcDbHatchEdge> edges;
  Adesk::Int32 sources = 0;  ///< how many entities the drawing names for it
  bool isPolyline() const { return (flags & 2) != 0; }
};

/// Parallel lines: the first goes through the base, each next one lies by the offset from it.
struct AcDbHatchLines {
  double angle = 0;
  AcGePoint3d base;
  AcGeVector3d offset{0, 0, 0};
  std::vector<double> dashes;
};

class ACADHOST_EXPORT AcDbHatch : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbHatch);
  struct Values {
    double elevation = 0;
    AcGeVector3d normal{0, 0, 1};
    std::wstring pattern;
    bool solid = true;
    bool associative = false;
    std::vector<AcDbHatchLoop> loops;
    short style = 0;  ///< 0 every second area, 1 the outermost, 2 everything
    short type = 1;
    double angle = 0;
    double scale = 1;
    bool isDouble = false;
    std::vector<AcDbHatchLines> lines;
    std::vector<AcGePoint3d> seeds;
  };
  AcDbHatch() = default;

  /// Valid until they are changed.
  const Values& values() const;
  Acad::ErrorStatus setValues(Values values);

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  /// A pattern of more lines than can be told apart is drawn as its rims.
  Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
  /// The middle of the extents.
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& gripPoints, AcDbIntArray& osnapModes,
                                     AcDbIntArray& geomIds) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;

 private:
  Values values_;
};
