// From one plane to another by polynomials of the second order at most. Pure.
#pragma once

#include <array>
#include <optional>

#include "components/raster/georeference.h"

namespace tarn::raster {

struct PlanePoint {
  double x = 0;
  double y = 0;
};

/// How a mapping changes around a point: derivatives of its two results by x and y.
struct Slope {
  double ux = 0;
  double uy = 0;
  double vx = 0;
  double vy = 0;

  double determinant() const { return ux * vy - uy * vx; }
  /// The longest step that a step of 1 in any direction can become.
  double longest() const;
};

/// u = c0 + c1 X + c2 Y + c3 X^2 + c4 XY + c5 Y^2 and v alike, where (X, Y) is the point less the
/// centre, so that large coordinates lose no digits.
class PlaneMapping {
 public:
  using Terms = std::array<double, 6>;

  PlaneMapping() = default;
  PlaneMapping(PlanePoint centre, const Terms& u, const Terms& v) : centre_(centre), u_(u), v_(v) {}

  /// Image pixels of ground coordinates. The transform must not be flat.
  static PlaneMapping pixelsOf(const GeoTransform& ground);

  /// The mapping of the second order that has these values at centre + (i - 1) * step, values[j][i]
  /// with i along x. Exact when what gave the values is one.
  static PlaneMapping through(PlanePoint centre, PlanePoint step,
                              const std::array<std::array<PlanePoint, 3>, 3>& values);

  PlanePoint at(double x, double y) const;
  Slope slopeAt(double x, double y) const;
  bool isAffine() const;
  /// True when the determinant of its slope has the sign of `orientation` in the whole rectangle.
  /// May say false without need.
  bool keepsSide(PlanePoint low, PlanePoint high, double orientation) const;

  /// The point that maps to `target`, searched from the centre. Empty when there is none near.
  std::optional<PlanePoint> invert(PlanePoint target) const;

  /// The same mapping from a grid whose point (i, j) is origin + (i * step.x, j * step.y).
  PlaneMapping onGrid(PlanePoint origin, PlanePoint step) const;
  /// The same mapping with its results multiplied.
  PlaneMapping scaled(double byU, double byV) const;

  /// The mapping along the row y: u = u[0] + u[1] X + u[2] X^2 with X = x - centre.x, v alike, and
  /// the terms of the determinant of its slope in the same form.
  struct Row {
    double centre = 0;
    std::array<double, 3> u{};
    std::array<double, 3> v{};
    std::array<double, 3> determinant{};
  };
  Row row(double y) const;

  /// Largest distance of any point between the middle of two points `step` apart (in x and y) and
  /// the middle of their images.
  double bend(double step) const;

 private:
  PlanePoint centre_;
  Terms u_{};
  Terms v_{};
};

}  // namespace tarn::raster
