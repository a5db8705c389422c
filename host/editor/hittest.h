// What can be hit of an entity: its lines on the screen. Pure; positions and distances are pixels
// of the view.
#pragma once

#include <vector>

#include "adesk.h"
#include "host/graphics/displaylist.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

struct Outline {
  std::vector<PixelPoint> points;
  bool filled = false;
  bool goesOn = false;  ///< the next outline is another loop of the same area
};
using Outlines = std::vector<Outline>;

struct PixelBox {
  double minX, minY, maxX, maxY;
};

/// The box around two corners.
ACADHOST_EXPORT PixelBox boxOf(PixelPoint a, PixelPoint b);

/// Lines, rims of areas, and boxes around texts. Pictures have none: their entity's frame is added
/// by addFrame().
ACADHOST_EXPORT Outlines outlinesOf(const DisplayList& list, const ViewState& view);
/// Also for clouds of points.
bool hasImages(const DisplayList& list);
/// A closed line through the corners.
void addFrame(Outlines& outlines, const std::vector<GroundPoint>& corners, const ViewState& view);

/// To the nearest line; 0 inside a filled area; infinite when there is nothing.
ACADHOST_EXPORT double distanceTo(const Outlines& outlines, PixelPoint point);
/// Everything lies in the box, and there is something.
ACADHOST_EXPORT bool liesInside(const Outlines& outlines, const PixelBox& box);
/// Some of it lies in the box.
ACADHOST_EXPORT bool touches(const Outlines& outlines, const PixelBox& box);

}  // namespace tarn::host
