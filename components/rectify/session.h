// What is known of one image's rectification: how it was left, what is tried over it, its numbers
// for a drawing. Values alone: no pixels, no files.
#pragma once

#include <optional>
#include <vector>

#include "components/rectify/chain.h"
#include "components/rectify/quality.h"
#include "inc/rectification.h"

namespace tarn::rectify {

/// One rectification of an image: pairs whose sources lie on the image as it was before it.
struct Layer {
  Method method = Method::kNone;
  std::vector<PointPair> pairs;
  Step step;
  /// The sources as those know them who handed them in: on the image as the accepted state of that
  /// time drew it.
  std::vector<PlanePoint> handed;
};

struct State {
  raster::GeoTransform ground;
  /// After the ground and before the layers.
  kel::RectifyPlacement placement;
  std::vector<Layer> layers;
};

/// Operations are those of IRectifyDialog, which see.
class Session {
 public:
  Session() = default;
  /// An image of that size, presented on the ground so.
  Session(const raster::GeoTransform& ground, int width, int height);

  /// A run begins: the points of the last rectification are known by where they are drawn now.
  void begin();
  void setMethod(int method);
  int method() const;
  int minimumPointCount(int method);
  void setControlPoints(const kel::PointList& sources, const kel::PointList& targets);
  const Assessment& assessment() const { return assessment_; }
  bool points(kel::PointList& sources, kel::PointList& targets) const;
  void accept();

  /// Of the accepted state: the placement since its last rectification.
  const kel::RectifyPlacement& placement() const;
  /// False, with nothing changed, when the record has no area or is not finite.
  bool setPlacement(const kel::RectifyPlacement& placement);

  /// Where the fit takes a point given like a source.
  std::optional<PlanePoint> transformed(PlanePoint p) const;
  /// What the fit takes for a point given like a source.
  std::optional<PlanePoint> sourceOfFit(PlanePoint p) const;
  /// As drawn now.
  const Chain& drawn() const { return preview_ ? previewChain_ : acceptedChain_; }

  kel::List<double> stored() const;
  /// False, with nothing changed, when the numbers are not those of an image of this size.
  bool restore(const kel::List<double>& numbers);

 private:
  Chain chainOf(size_t layers) const;
  void rebuild();
  /// The row of the last layer that was handed in as this source, or -1.
  int handedRow(PlanePoint source) const;
  /// A source of the accepted drawing as one of the last layer's.
  std::optional<PlanePoint> underLast(PlanePoint source) const;
  ImageOutline outlineOf(const Chain& base) const;

  int width_ = 0;
  int height_ = 0;
  raster::GeoTransform fileGround_;
  State accepted_;
  Chain acceptedChain_;
  int method_ = -1;
  int lastAsked_ = -1;
  /// The points in work; with a fit when there is one.
  std::optional<Layer> trial_;
  bool replacesLast_ = false;
  bool preview_ = false;
  Chain previewChain_;
  Assessment assessment_;
};

}  // namespace tarn::rectify
