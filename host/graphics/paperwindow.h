// A viewport of a sheet as a value: where it stands on the sheet and what of the model it shows.
#pragma once

#include <QRect>
#include <QRectF>

#include "adesk.h"
#include "host/graphics/viewstate.h"

class AcDbViewport;

namespace tarn::host {

/// Sheet coordinates are those of the sheet's entities, ground coordinates those of the model.
struct PaperWindow {
  GroundPoint paperCenter;
  double paperWidth = 1;
  double paperHeight = 1;
  GroundPoint viewCenter;  ///< ground in the middle of the window
  double viewHeight = 1;   ///< ground units over the window's height
  double twist = 0;        ///< radians, as in ViewState

  double groundPerPaper() const { return viewHeight / paperHeight; }
};

/// The viewport must be open.
ACADHOST_EXPORT PaperWindow paperWindowOf(const AcDbViewport& viewport);
/// Shows other ground in the viewport, which must be open for write; its place stays.
ACADHOST_EXPORT void showInViewport(AcDbViewport& viewport, GroundPoint center, double height,
                                    double twist);

/// The window on the device that `paper` shows the sheet on, in pixels. `paper` may be turned by
/// right angles only.
ACADHOST_EXPORT QRectF deviceRectOf(const PaperWindow& window, const ViewState& paper);

/// The model over the whole device such that the window shows its part of it.
ACADHOST_EXPORT ViewState throughWindow(const PaperWindow& window, const ViewState& paper);

/// The whole device pixels that the rectangle touches, within the device; empty when there is none.
ACADHOST_EXPORT QRect touchedPixels(const QRectF& rect, const ViewState& device);

/// The part of a view that stands on these pixels, as a view of its own: same ground, same pixels.
ACADHOST_EXPORT ViewState croppedView(const ViewState& view, const QRect& pixels);

}  // namespace tarn::host
