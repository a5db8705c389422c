// The coordinate systems of flat entities, and points along their curves.
#pragma once

#include <vector>

#include "adesk.h"
#include "gemat3d.h"
#include "gepnt3d.h"
#include "gevec3d.h"

namespace tarn::host {

/// From the own system of a flat entity to the world, by the arbitrary axis algorithm of drawing
/// files: with the z axis as normal the two are the same.
ACADHOST_EXPORT AcGeMatrix3d entityToWorld(const AcGeVector3d& normal);

/// How a transformation of the world looks inside a flat entity's own system, whose normal changes
/// with it.
struct OwnChange {
  AcGeVector3d normal;
  AcGeMatrix3d map;  ///< from the old own system to the new one
  double scale = 1;  ///< of lengths along the old x axis

  /// An angle, in radians, after the change; the very same while nothing turns.
  double turned(double angle) const;
};
ACADHOST_EXPORT OwnChange changeOf(const AcGeVector3d& normal, const AcGeMatrix3d& transform);

/// Points of a circle's part in its own system, from `start` counter-clockwise to `end` (radians);
/// equal angles make a whole circle.
std::vector<AcGePoint3d> arcPoints(const AcGePoint3d& center, double radius, double start,
                                   double end);

/// Adds what lies behind `from` on the way to `to`: the end alone for bulge 0, else an arc whose
/// bulge is the tangent of a quarter of its angle, positive counter-clockwise.
void addBulge(std::vector<AcGePoint3d>& points, const AcGePoint3d& from, const AcGePoint3d& to,
              double bulge);

/// All points times the matrix.
void transformAll(std::vector<AcGePoint3d>& points, const AcGeMatrix3d& matrix);

}  // namespace tarn::host
