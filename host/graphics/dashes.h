// Lines with gaps.
#pragma once

#include <QPointF>
#include <QRectF>
#include <functional>
#include <vector>

#include "host/graphics/displaylist.h"

namespace tarn::host {

/// Patterns of which a period is shorter than this are seen as lines without gaps.
constexpr double kSmallestPeriod = 4;  ///< pixels

/// Calls `paint` for each dash of the line that meets the box; a point of the pattern has both ends
/// at the same place. `perUnit` are pixels of a ground unit.
void forEachDash(const std::vector<QPointF>& line, const DashPattern& pattern, double perUnit,
                 const QRectF& box, const std::function<void(QPointF, QPointF)>& paint);

}  // namespace tarn::host
