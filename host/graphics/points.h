// Clouds of points onto device pixels: each point is the pixel in which it lies, the highest point
// of a pixel is seen. Where neighbours are more than a pixel apart, dots are up to three pixels
// wide.
#pragma once

#include <QImage>
#include <QRect>

#include "adesk.h"
#include "host/graphics/displaylist.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

/// The points in `device`, a part of the view's pixels, as a picture of that size, transparent
/// where there is no point. Null when there is none at all. `view` must have the device's size.
ACADHOST_EXPORT QImage paintPoints(const PointsItem& item, const ViewState& view,
                                   const QRect& device);

}  // namespace tarn::host
