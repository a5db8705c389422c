// The temporary graphics of the control points' pairs over the drawing.
#pragma once

#include <vector>

#include "gept2dar.h"

namespace tarn::image {

/// Keeps what is shown and paints it again: the host forgets it with every regeneration. The
/// numbers are the places in the list.
class PairMarkers {
 public:
  /// Shows one more pair: the source point, then the target point.
  void add(AcGePoint2dArray nodes);
  /// Takes one away and paints the rest; false when there is none at that place.
  bool remove(size_t index);
  /// Takes all away, also from the drawing.
  void clear();
  /// Paints all again at the size that suits the current view.
  void repaint() const;
  size_t count() const { return pairs_.size(); }

 private:
  std::vector<AcGePoint2dArray> pairs_;
};

}  // namespace tarn::image
