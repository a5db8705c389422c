// Boxes along the axes of the drawing.
#pragma once

#include "acdb.h"
#include "gemat3d.h"
#include "gepnt3d.h"

/// Empty (minimum above maximum) until a point was added.
class ACADHOST_EXPORT AcDbExtents {
 public:
  AcDbExtents() = default;
  AcDbExtents(const AcGePoint3d& minimum, const AcGePoint3d& maximum) { set(minimum, maximum); }

  AcGePoint3d minPoint() const { return minimum_; }
  AcGePoint3d maxPoint() const { return maximum_; }
  bool isEmpty() const;
  /// eInvalidExtents, with nothing changed, when a minimum is above its maximum.
  Acad::ErrorStatus set(const AcGePoint3d& minimum, const AcGePoint3d& maximum);
  Acad::ErrorStatus addPoint(const AcGePoint3d& point);
  Acad::ErrorStatus addExt(const AcDbExtents& other);
  /// The box of the eight transformed corners.
  void transformBy(const AcGeMatrix3d& matrix);

 private:
  AcGePoint3d minimum_{1e20, 1e20, 1e20};
  AcGePoint3d maximum_{-1e20, -1e20, -1e20};
};
