// A mapping of presented pixels to an image's that no polynomial of the second order gives:
// followed in pieces, each of which is one to a bounded error.
#pragma once

#include <optional>

#include "components/raster/planemapping.h"

namespace tarn::raster {

/// Every operation may be called from several threads at once.
class CurvedMapping {
 public:
  CurvedMapping() = default;
  virtual ~CurvedMapping() = default;
  CurvedMapping(const CurvedMapping&) = delete;
  CurvedMapping& operator=(const CurvedMapping&) = delete;

  /// Where the presented position lies in the image, also some way beyond its edges. Empty where
  /// there is no such place.
  virtual std::optional<PlanePoint> at(double x, double y) const = 0;
  /// False when no part of the image can lie in the rectangle. May say true without need.
  virtual bool mayShow(PlanePoint low, PlanePoint high) const = 0;
  /// Sign of the determinant of its slope where it shows the image.
  virtual double orientation() const = 0;
};

/// Largest error of a piece in pixels of the level that is read.
constexpr double kPieceError = 0.0625;

/// The mapping over a rectangle, its results divided by `factor` (its positions multiplied by
/// `step`), when a polynomial of the second order gives it to kPieceError.
std::optional<PlaneMapping> pieceOf(const CurvedMapping& mapping, PlanePoint low, PlanePoint high,
                                    double step, PlanePoint factor);

}  // namespace tarn::raster
