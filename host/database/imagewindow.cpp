#include "host/database/imagewindow.h"

#include <algorithm>
#include <cmath>

namespace tarn::host {

namespace {

constexpr double kMostCells = 4096;  ///< along a side

}  // namespace

std::vector<AcGePoint3d> shownRim(const AcDbRasterImage::Values& values) {
  const double w = values.width;
  const double h = values.height;
  if (values.clip.size() > 2) return values.clip;
  if (values.clip.size() == 2) {
    const AcGePoint3d& a = values.clip[0];
    const AcGePoint3d& b = values.clip[1];
    return {{a.x, a.y, 0}, {b.x, a.y, 0}, {b.x, b.y, 0}, {a.x, b.y, 0}};
  }
  return {{0, 0, 0}, {w, 0, 0}, {w, h, 0}, {0, h, 0}};
}

bool isShownAt(const std::vector<AcGePoint3d>& rim, double x, double y) {
  bool inside = false;
  for (size_t i = 0, j = rim.size() - 1; i < rim.size(); j = i++) {
    const AcGePoint3d& a = rim[i];
    const AcGePoint3d& b = rim[j];
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  }
  return inside;
}

ImageWindow windowOf(const AcDbRasterImage::Values& values, const TarnView& view) {
  const double across = values.u.x * values.v.y - values.u.y * values.v.x;
  const double pixel = std::hypot(values.u.x, values.u.y);
  if (across == 0 || !(pixel > 0) || !(view.pixel > 0)) return {};
  double low[2] = {INFINITY, INFINITY};
  double high[2] = {-INFINITY, -INFINITY};
  const double c = std::cos(view.twist);
  const double s = std::sin(view.twist);
  for (const int corner : {0, 1, 2, 3}) {
    const double right = (corner % 2 == 0 ? -0.5 : 0.5) * view.width;
    const double up = (corner / 2 == 0 ? -0.5 : 0.5) * view.height;
    const double x = view.centerX + right * c + up * s - values.origin.x;
    const double y = view.centerY + up * c - right * s - values.origin.y;
    const double place[2] = {(x * values.v.y - y * values.v.x) / across,
                             values.height - (y * values.u.x - x * values.u.y) / across};
    for (const int axis : {0, 1}) {
      low[axis] = std::min(low[axis], place[axis]);
      high[axis] = std::max(high[axis], place[axis]);
    }
  }
  double rim[4] = {INFINITY, INFINITY, -INFINITY, -INFINITY};
  for (const AcGePoint3d& p : shownRim(values)) {
    rim[0] = std::min(rim[0], p.x);
    rim[1] = std::min(rim[1], p.y);
    rim[2] = std::max(rim[2], p.x);
    rim[3] = std::max(rim[3], p.y);
  }
  const double x0 = std::floor(std::max({low[0], rim[0], 0.0}));
  const double y0 = std::floor(std::max({low[1], rim[1], 0.0}));
  const double x1 = std::ceil(std::min({high[0], rim[2], values.width}));
  const double y1 = std::ceil(std::min({high[1], rim[3], values.height}));
  if (!(x1 > x0) || !(y1 > y0)) return {};
  ImageWindow window;
  window.reduction =
      std::max({1.0, view.pixel / pixel, (x1 - x0) / kMostCells, (y1 - y0) / kMostCells});
  window.x = static_cast<int>(x0);
  window.y = static_cast<int>(y0);
  window.width = static_cast<int>(std::ceil((x1 - x0) / window.reduction));
  window.height = static_cast<int>(std::ceil((y1 - y0) / window.reduction));
  return window;
}

}  // namespace tarn::host
