// Values that the rectification component and its dialog exchange.
#pragma once

#include <cmath>
#include <utility>

#include "inc/kvalues.h"

namespace kel {

/// Points as the rectification exchanges them: each a list of x, y and 0.0.
using PointList = List<List<double>>;

/// What has been done to an image in the drawing since its last rectification (since its file was
/// read when there is none): x' = originX + a x + b y, y' = originY + d x + e y, in drawing units.
struct RectifyPlacement {
  double originX = 0;
  double originY = 0;
  double a = 1;
  double b = 0;
  double d = 0;
  double e = 1;

  void applyTo(double x, double y, double& outX, double& outY) const {
    outX = originX + a * x + b * y;
    outY = originY + d * x + e * y;
  }

  void move(double dx, double dy) {
    originX += dx;
    originY += dy;
  }
  /// Scales about (x, y).
  void scale(double byX, double byY, double x, double y) { change(byX, 0, 0, byY, x, y); }
  /// Turns counter-clockwise about (x, y), by an angle in radians.
  void rotate(double angle, double x, double y) {
    const double c = std::cos(angle), s = std::sin(angle);
    change(c, -s, s, c, x, y);
  }
  /// Mirrors about the line through two points; does nothing when they are one.
  void mirror(double x1, double y1, double x2, double y2) {
    const double length = std::hypot(x2 - x1, y2 - y1);
    if (!(length > 0)) return;
    const double ux = (x2 - x1) / length, uy = (y2 - y1) / length;
    const double c = ux * ux - uy * uy, s = 2 * ux * uy;
    change(c, s, s, -c, x1, y1);
  }

 private:
  /// The matrix (m11 m12; m21 m22) about (x, y), after what is there. Origins are taken relative to
  /// the fixed point, so that large coordinates keep their digits.
  void change(double m11, double m12, double m21, double m22, double x, double y) {
    const double ox = originX - x, oy = originY - y, oldA = a, oldB = b;
    originX = x + m11 * ox + m12 * oy;
    originY = y + m21 * ox + m22 * oy;
    a = m11 * oldA + m12 * d;
    b = m11 * oldB + m12 * e;
    d = m21 * oldA + m22 * d;
    e = m21 * oldB + m22 * e;
  }
};

/// Why the points give no transformation, or a weak one.
enum class RectifyFault {
  kNone,
  /// Too few points for the method.
  kTooFew,
  /// A coordinate that is not a finite number, or so large that it cannot be computed with.
  kNotFinite,
  /// Sources are all one point.
  kNoExtent,
  /// Targets lie on one point or line, so that the image would have no area.
  kTargetsFlat,
  /// Sources lie on one line, or nearly.
  kOnLine,
  /// Sources lie on a line along an axis, which is too little for the linear method.
  kAlongAxis,
  /// Sources lie on one curve of the second order (a conic, two lines), or nearly.
  kOnConic,
  /// Sources lie on one curve of the third order (three lines, a line and a conic), or nearly.
  kOnCubic,
  /// Several points share a place, so that too few different ones are left.
  kTooFewPlaces,
  /// The points lie together: an error of picking grows more than a hundredfold in an image corner.
  kCornerFar,
  /// The image would fold over itself.
  kFolds,
  /// A source lies where the image, as it is drawn now, has no pixel that could be meant.
  kSourceLost
};

/// What could be better about a good fit.
enum class RectifyHint {
  kNone,
  /// Points further apart would help: picking errors grow much up to an image corner.
  kSpreadPoints,
  /// The points are just enough, so nothing is checked.
  kNoCheck
};

/// What was probably typed wrong in one place of one row: its coordinates are to be exchanged, then
/// whole millions (a zone's prefix) to be added.
struct RectifyChange {
  int row = 0;  ///< from 0
  bool isTarget = true;
  bool swaps = false;
  double addEast = 0;
  double addNorth = 0;

  void applyTo(double& east, double& north) const {
    if (swaps) std::swap(east, north);
    east += addEast;
    north += addNorth;
  }
};

/// A slip of the pen that would explain why the points do not fit: exchanged axes, a zone's prefix
/// missing or too much, in all rows or in some.
struct RectifyRepair {
  /// Nothing when there is no such explanation.
  List<RectifyChange> changes;
  /// Root mean square of the Helmert residuals before and after, which differ more than a
  /// hundredfold; both are 0 when only the image's place speaks for it: all targets lie a zone's
  /// prefix away from it.
  double rmseBefore = 0;
  double rmseAfter = 0;
  /// Sources whose y runs downwards would explain it as well.
  bool isMirroredToo = false;
};

/// How good the fit of the control points is, in drawing units.
struct RectifyQuality {
  /// 0 good, 1 not solvable, 2 weak.
  int status = 1;
  RectifyFault fault = RectifyFault::kTooFew;
  RectifyHint hint = RectifyHint::kNone;
  /// Rows (from 0) of the points that the fault speaks of.
  List<int> faultPoints;
  /// The rows on each line, where the fault is that sources lie on so many of them; empty for one
  /// curve.
  List<List<int>> lines;
  /// For too few points or places: how many the method needs, how many there are.
  int pointsNeeded = 0;
  int pointsThere = 0;
  /// Source positions where one more point helps most, best first.
  PointList suggested;

  int pointCount = 0;
  /// Number of coordinates beyond those that the method needs; 0 means that nothing is checked.
  int redundancy = 0;
  double rmse = 0;
  /// Standard error of unit weight; 0 when nothing is checked.
  double s0 = 0;
  /// The row whose removal lowers s0 most, and s0 then; -1 when no row's does.
  int worstPoint = -1;
  double s0WithoutWorst = 0;

  double condition = 0;
  /// How much one unit of picking error grows in the worst image corner.
  double cornerFactor = 0;
  RectifyRepair repair;

  /// X then Y, of x' = (x - centre[0]) / centre[2], y' = (y - centre[1]) / centre[2]; the results
  /// are multiplied by centre[5] and (centre[3], centre[4]) is added. Terms in the order 1, x, y,
  /// x², xy, y², x³, x²y, xy², y³, as many as the method has (3 for linear, affine and Helmert).
  List<double> coefficientsX;
  List<double> coefficientsY;
  List<double> centre;
};

}  // namespace kel
