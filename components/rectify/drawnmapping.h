// The grid on which a rectified image is drawn, and where its pixels come from.
#pragma once

#include <optional>
#include <vector>

#include "components/raster/curvedmapping.h"
#include "components/raster/georeference.h"
#include "components/rectify/chain.h"
#include "components/rectify/foldedplaces.h"

namespace tarn::rectify {

/// North up: the rotation terms of the transform are 0. Sizes are in pixels.
struct Frame {
  raster::GeoTransform transform;
  int width = 0;
  int height = 0;
  /// How many image pixels one of it is long, 1 or more.
  double pixelLength = 1;
};

/// The box of the drawn image, its outline followed closely. A step of one pixel is as long in the
/// image as one of its own (on average); longer where the image is so distorted that it would take
/// far more pixels than it has. Empty when the image is drawn nowhere that can be computed with.
std::optional<Frame> frameOf(const Chain& chain);

class DrawnMapping final : public raster::CurvedMapping {
 public:
  DrawnMapping(Chain chain, const Frame& frame);

  std::optional<PlanePoint> at(double x, double y) const override;
  bool mayShow(PlanePoint low, PlanePoint high) const override;
  double orientation() const override;

 private:
  struct Box {
    PlanePoint low;
    PlanePoint high;
  };

  Chain chain_;
  raster::GeoTransform frame_;
  /// A lattice over the image, where it lies in the frame, and the boxes of its meshes.
  std::vector<PlanePoint> pixels_;
  std::vector<PlanePoint> places_;
  std::vector<Box> meshes_;
  /// Of an image that folds.
  std::optional<FoldedPlaces> folded_;
};

}  // namespace tarn::rectify
