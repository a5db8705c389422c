// From an image's pixels to the drawing: its placement, then rectifications and moves on top of one
// another. The one place where pixels, placed coordinates and targets are converted. Pure.
#pragma once

#include <optional>
#include <vector>

#include "components/raster/georeference.h"
#include "components/rectify/fit.h"
#include "inc/rectification.h"

namespace tarn::rectify {

/// A fit and what was done to the image after it.
struct Step {
  Fit fit;
  kel::RectifyPlacement after;
};

class Chain {
 public:
  Chain() = default;
  /// `ground` takes pixels of the presented image (outer upper left corner 0, 0; y down) to the
  /// drawing; `after` follows it; then the steps. Sizes are the image's.
  Chain(const raster::GeoTransform& ground, int width, int height,
        const kel::RectifyPlacement& after, std::vector<Step> steps);

  int width() const { return width_; }
  int height() const { return height_; }
  /// Nothing but moves, scales, turns and mirrors.
  bool isAffine() const { return steps_.empty(); }
  /// Of an affine chain.
  raster::GeoTransform affine() const;

  /// Drawing coordinates of a pixel position.
  PlanePoint at(PlanePoint pixel) const;
  /// Derivatives of the drawing coordinates by column and row.
  Slope slopeAt(PlanePoint pixel) const;
  /// The pixel position that is drawn at p, by Newton's method from `start` or, without one, from
  /// an affine approximation. Positions up to an image's size outside are found too. Empty where
  /// there is none, or only one on a side that is folded over.
  std::optional<PlanePoint> pixelOf(PlanePoint p) const;
  std::optional<PlanePoint> pixelOf(PlanePoint p, PlanePoint start) const;
  /// From the affine approximation alone.
  std::optional<PlanePoint> pixelFromAbout(PlanePoint p) const;
  /// 1, or -1 for an image that is drawn mirrored.
  double orientation() const { return orientation_; }

 private:
  struct Followed {
    PlanePoint point;
    Slope slope;
  };
  Followed follow(PlanePoint pixel) const;
  void prepareInverse();

  kel::RectifyPlacement base_{0, 0, 1, 0, 0, -1};
  int width_ = 0;
  int height_ = 0;
  std::vector<Step> steps_;
  /// From the drawing to about the pixel.
  Normaliser around_;
  double about_[6] = {0, 1, 0, 0, 0, 1};
  double orientation_ = -1;
};

}  // namespace tarn::rectify
