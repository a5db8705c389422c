// Where the pixels of a drawn image come from when it folds over itself, as a preview of points
// that contradict one another does.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "components/raster/georeference.h"
#include "components/rectify/chain.h"

namespace tarn::rectify {

/// True when the image turns over somewhere, so that a place may show several pixels.
bool foldsOver(const Chain& chain);

/// A net of triangles over the image and where they are drawn. Of several pixels for one place it
/// always takes the one in the earliest triangle, so that neighbours come from the same sheet.
class FoldedPlaces {
 public:
  FoldedPlaces(const Chain& chain, const raster::GeoTransform& frame, int width, int height);

  /// The image pixel at a position of the frame; empty where the net has none that is not turned
  /// over.
  std::optional<PlanePoint> at(const Chain& chain, double x, double y) const;

 private:
  struct Triangle {
    PlanePoint places[3];
    PlanePoint pixels[3];
    /// Around what startIn() may take; most triangles of a cell are passed over by it.
    PlanePoint low;
    PlanePoint high;
  };
  std::optional<PlanePoint> startIn(const Triangle& triangle, double x, double y) const;
  size_t cellOf(double x, double y) const;
  void add(Triangle triangle);

  raster::GeoTransform frame_;
  PlanePoint cell_;
  PlanePoint mesh_;
  std::vector<Triangle> triangles_;
  /// Those that may lie in each cell of the frame, in their order.
  std::vector<std::vector<uint32_t>> cells_;
};

}  // namespace tarn::rectify
