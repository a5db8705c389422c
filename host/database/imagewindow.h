// Which pixels of an image a view needs.
#pragma once

#include <vector>

#include "dbimage.h"
#include "tarnhost.h"

namespace tarn::host {

/// Cells of `reduction` pixels each, from the corner (x, y) of an image; y down.
struct ImageWindow {
  int x = 0;
  int y = 0;
  int width = 0;  ///< cells; 0 when nothing is seen
  int height = 0;
  double reduction = 1;
};

/// The cells of the shown part that lie in the view, each at least a pixel of it.
ImageWindow windowOf(const AcDbRasterImage::Values& values, const TarnView& view);

/// The rim of the shown part in pixels, y down.
std::vector<AcGePoint3d> shownRim(const AcDbRasterImage::Values& values);

/// Whether a place of the image is in the shown part.
bool isShownAt(const std::vector<AcGePoint3d>& rim, double x, double y);

}  // namespace tarn::host
