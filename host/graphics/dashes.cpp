#include "host/graphics/dashes.h"

#include <algorithm>
#include <cmath>

namespace tarn::host {

namespace {

/// The part of a segment from `low` to `high`, in shares of it, that may lie in the box.
bool partIn(const QRectF& box, QPointF a, QPointF d, double& low, double& high) {
  const double p[4] = {-d.x(), d.x(), -d.y(), d.y()};
  const double q[4] = {a.x() - box.left(), box.right() - a.x(), a.y() - box.top(),
                       box.bottom() - a.y()};
  for (int side = 0; side < 4; ++side) {
    if (p[side] == 0 && q[side] < 0) return false;
    if (p[side] < 0) low = std::max(low, q[side] / p[side]);
    if (p[side] > 0) high = std::min(high, q[side] / p[side]);
  }
  return low <= high;
}

}  // namespace

void forEachDash(const std::vector<QPointF>& line, const DashPattern& pattern, double perUnit,
                 const QRectF& box, const std::function<void(QPointF, QPointF)>& paint) {
  const double period = pattern.period * perUnit;
  double done = 0;  // of the line before this segment, in pixels
  for (size_t i = 1; i < line.size(); ++i) {
    const QPointF d = line[i] - line[i - 1];
    const double length = std::hypot(d.x(), d.y());
    double low = 0;
    double high = 1;
    if (length > 0 && std::isfinite(length) && partIn(box, line[i - 1], d, low, high)) {
      const double from = done + low * length;
      const double to = done + high * length;
      const auto at = [&](double along) { return line[i - 1] + d * ((along - done) / length); };
      for (double start = std::floor(from / period) * period; start <= to; start += period) {
        double place = start;
        for (const double dash : pattern.lengths) {
          const double end = place + std::fabs(dash) * perUnit;
          const double first = std::max(from, place);
          const double last = std::min(to, end);
          if (dash >= 0 && first <= last) paint(at(first), at(last));
          place = end;
        }
      }
    }
    if (std::isfinite(length)) done = std::fmod(done + length, period);
  }
}

}  // namespace tarn::host
