#include "components/raster/controlpoints.h"

#include <gdal_alg.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "components/raster/gdalaccess.h"

namespace tarn::raster {
namespace {

constexpr double kFitsTransform = 0.5;
constexpr size_t kSecondOrderFrom = 6;

std::vector<GDAL_GCP> asGdal(const std::vector<ControlPoint>& points) {
  static char nothing[] = "";
  std::vector<GDAL_GCP> out;
  out.reserve(points.size());
  for (const ControlPoint& p : points)
    out.push_back({nothing, nothing, p.column, p.row, p.x, p.y, 0});
  return out;
}

double largestResidual(const PlaneMapping& mapping, const std::vector<ControlPoint>& points) {
  double most = 0;
  for (const ControlPoint& p : points) {
    const PlanePoint pixel = mapping.at(p.x, p.y);
    most = std::max(most, std::hypot(pixel.x - p.column, pixel.y - p.row));
  }
  return most;
}

std::optional<GeoTransform> fittedTransform(const std::vector<GDAL_GCP>& points) {
  double t[6] = {};
  if (!GDALGCPsToGeoTransform(static_cast<int>(points.size()), points.data(), t, TRUE))
    return std::nullopt;
  const GeoTransform transform{t[0], t[1], t[2], t[3], t[4], t[5]};
  return isUsable(transform) ? std::optional<GeoTransform>(transform) : std::nullopt;
}

/// GDAL's polynomials from the ground to pixels, found again from their values at nine points.
std::optional<PlaneMapping> fittedPolynomials(const std::vector<ControlPoint>& points,
                                              const std::vector<GDAL_GCP>& gdalPoints, int order) {
  const std::unique_ptr<void, void (*)(void*)> transformer(
      GDALCreateGCPTransformer(static_cast<int>(points.size()), gdalPoints.data(), order, FALSE),
      GDALDestroyGCPTransformer);
  if (!transformer) return std::nullopt;
  double left = points[0].x, right = left, low = points[0].y, high = low;
  for (const ControlPoint& p : points) {
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    low = std::min(low, p.y);
    high = std::max(high, p.y);
  }
  const PlanePoint centre{(left + right) / 2, (low + high) / 2};
  const PlanePoint step{(right - left) / 2, (high - low) / 2};
  if (step.x <= 0 || step.y <= 0) return std::nullopt;
  std::array<std::array<PlanePoint, 3>, 3> values;
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) {
      double x = centre.x + (i - 1) * step.x, y = centre.y + (j - 1) * step.y, z = 0;
      int done = FALSE;
      GDALGCPTransform(transformer.get(), TRUE, 1, &x, &y, &z, &done);
      if (!done || !std::isfinite(x) || !std::isfinite(y)) return std::nullopt;
      values[j][i] = {x, y};
    }
  }
  return PlaneMapping::through(centre, step, values);
}

}  // namespace

Result<SolvedPoints> solveControlPoints(const std::vector<ControlPoint>& points) {
  for (const ControlPoint& p : points) {
    if (!std::isfinite(p.column + p.row + p.x + p.y))
      return Status::error("one of its control points is no number");
  }
  if (points.size() < 2)
    return Status::error("its only control point does not say how large it is");
  const GdalErrors quiet;
  const std::vector<GDAL_GCP> gdalPoints = asGdal(points);
  SolvedPoints solved;
  if (const auto transform = fittedTransform(gdalPoints)) {
    solved.pixelOfGround = PlaneMapping::pixelsOf(*transform);
    solved.residual = largestResidual(solved.pixelOfGround, points);
    if (solved.residual <= kFitsTransform) {
      solved.transform = transform;
      return solved;
    }
  }
  const int order = points.size() >= kSecondOrderFrom ? 2 : 1;
  std::optional<PlaneMapping> mapping;
  for (int each = order; each > 0 && !mapping; --each)
    mapping = fittedPolynomials(points, gdalPoints, each);
  if (!mapping)
    return Status::error("its " + std::to_string(points.size()) +
                         " control points do not determine its place");
  solved.pixelOfGround = *mapping;
  solved.residual = largestResidual(*mapping, points);
  return solved;
}

}  // namespace tarn::raster
