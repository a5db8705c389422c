// The picture of a sheet: paper, what its windows show of the model, and its own entities on top.
#pragma once

#include <QRectF>
#include <vector>

#include "adesk.h"
#include "host/graphics/renderer.h"

namespace tarn::host {

/// Entities seen through a window.
struct SceneWindow {
  const Scene* scene = nullptr;  ///< not owned
  ViewState view;                ///< over the whole device
  QRectF clip;                   ///< device pixels
};

struct SheetPicture {
  ViewState view;       ///< of the sheet
  GroundBox paper;      ///< sheet coordinates
  GroundBox printable;  ///< without the margins
  const Scene* scene = nullptr;
  std::vector<SceneWindow> windows;
  QRectF current;  ///< the window that is worked in, in device pixels; null when it is the sheet
};

/// The same painter as for render().
ACADHOST_EXPORT void renderSheet(QPainter& painter, const SheetPicture& picture,
                                 const RenderStyle& style);

}  // namespace tarn::host
