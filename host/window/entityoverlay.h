// What lies over the picture while entities are chosen: highlighted lines, grips, the dragged
// window, the line to the cursor, the marker of an object snap.
#pragma once

#include <QPointF>
#include <optional>

#include "host/editor/objectsnap.h"
#include "host/graphics/viewstate.h"

class QPainter;

namespace tarn::host {

class HostApp;

/// What the mouse does just now.
struct PointerState {
  std::optional<GroundPoint> cursor;        ///< nothing while the mouse is elsewhere
  std::optional<GroundPoint> windowCorner;  ///< of a window that is being drawn
  std::optional<GroundPoint> hotGrip;
  bool snaps = false;  ///< a point is wanted, so object snaps and ORTHOMODE count
  double ratio = 1;    ///< device pixels of a unit of the screen: marks and letters grow with it
  bool lightGround = false;
};

/// What a click at a cursor means while a point is wanted: a point of an entity that a running snap
/// or a named one finds, else with ORTHOMODE a point straight beside or above the last one.
struct AimedPoint {
  GroundPoint point;
  std::optional<Snap> snap;
};
AimedPoint aimedAt(HostApp& app, GroundPoint cursor);

/// One painter unit is one device pixel.
void paintOverlay(QPainter& painter, HostApp& app, const PointerState& pointer);

/// A grip of what was selected before a command, within PICKBOX pixels of the place.
std::optional<GroundPoint> gripAt(HostApp& app, GroundPoint place);

}  // namespace tarn::host
