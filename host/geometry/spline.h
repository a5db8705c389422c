// Points along spline curves.
#pragma once

#include <vector>

#include "adesk.h"
#include "gepnt3d.h"
#include "gevec3d.h"

namespace tarn::host {

/// A rational B-spline; no weights for equal ones. There are degree + 1 more knots than control
/// points.
struct SplineCurve {
  int degree = 3;
  std::vector<double> knots;
  std::vector<AcGePoint3d> control;
  std::vector<double> weights;
};

/// False when the numbers make no curve.
ACADHOST_EXPORT bool isCurve(const SplineCurve& curve);

/// The point at a parameter, by de Boor's algorithm; the parameter is brought between the ends.
ACADHOST_EXPORT AcGePoint3d pointOf(const SplineCurve& curve, double parameter);

/// Points along the whole curve, close enough for drawing: its ends and knots among them. The
/// control points when it is no curve.
ACADHOST_EXPORT std::vector<AcGePoint3d> pointsAlong(const SplineCurve& curve);

/// Points along the curve with continuous curvature through the given ones, its parameter going
/// with the length of their chords. A tangent without length leaves that end straight.
ACADHOST_EXPORT std::vector<AcGePoint3d> pointsThrough(const std::vector<AcGePoint3d>& points,
                                                       const AcGeVector3d& startTangent,
                                                       const AcGeVector3d& endTangent);

}  // namespace tarn::host
