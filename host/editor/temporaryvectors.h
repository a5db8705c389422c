// Lines that programs draw over the picture for a while: they are in no drawing and gone with the
// next regeneration or redraw.
#pragma once

#include <vector>

#include "adesk.h"
#include "dbid.h"
#include "host/graphics/viewstate.h"

class QPainter;

namespace tarn::host {

struct TemporaryVectors {
  struct Line {
    GroundPoint from;
    GroundPoint to;
    unsigned color = 7;  ///< index 1 to 255
    bool highlighted = false;
  };

  AcDbObjectId key;  ///< of the view that they belong to (Space::viewKey)
  std::vector<Line> lines;
};

/// Paints over the picture, on a dark rim so that the lines are seen on every ground; one painter
/// unit is one device pixel.
ACADHOST_EXPORT void paintTemporaryVectors(QPainter& painter, const TemporaryVectors& vectors,
                                           const ViewState& view);

}  // namespace tarn::host
