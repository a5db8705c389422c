// Control points to a mapping of the ground onto the image.
#pragma once

#include <optional>
#include <vector>

#include "base/result.h"
#include "components/raster/georeference.h"
#include "components/raster/planemapping.h"

namespace tarn::raster {

struct SolvedPoints {
  /// The transform that the points fit to half a pixel, when there is one.
  std::optional<GeoTransform> transform;
  /// Ground coordinates to image pixels.
  PlaneMapping pixelOfGround;
  /// Largest distance of a point's pixel from where the mapping puts it, in pixels.
  double residual = 0;
};

/// An affine transform where one fits; else GDAL's polynomials, of the second order from six points
/// on, as its warper takes them. Fails (a part of a sentence: why they cannot place the image).
Result<SolvedPoints> solveControlPoints(const std::vector<ControlPoint>& points);

}  // namespace tarn::raster
