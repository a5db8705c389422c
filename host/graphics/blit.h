// Pictures onto device pixels. Planning is pure: where the corners fall decides how pixels are
// taken; then each device pixel whose centre lies in the picture gets one value, so that pictures
// that meet leave no seam and do not overlap.
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

#include "adesk.h"
#include "host/graphics/displaylist.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

enum class BlitMode {
  kNothing,   ///< outside the view, or without area
  kExact,     ///< one cell is one device pixel: copied, never resampled
  kNearest,   ///< cells larger than device pixels keep their edges
  kBilinear,  ///< twisted or shrunk
};

/// Image pixel coordinates (edges, y down) of a device position: i = ix*x + iy*y + i0, j likewise.
struct BlitPlan {
  BlitMode mode = BlitMode::kNothing;
  QPoint exactTarget;  ///< device position of the picture's first pixel, for kExact
  double ix = 0, iy = 0, i0 = 0;
  double jx = 0, jy = 0, j0 = 0;
};

/// `view` must have the device's size in pixels.
ACADHOST_EXPORT BlitPlan planBlit(const ImageItem& item, const ViewState& view);

/// The part of `wanted` (device pixels) that the picture covers, as pixels ready to be put at
/// `target`; null for kNothing and kExact (there the picture itself goes to exactTarget), and when
/// there is no such part.
ACADHOST_EXPORT QImage resample(const QImage& source, const BlitPlan& plan, const QRect& wanted,
                                QPoint& target);

}  // namespace tarn::host
