#include "host/graphics/viewstate.h"

#include <algorithm>
#include <cmath>

namespace tarn::host {

void GroundBox::add(double x, double y) {
  if (isEmpty()) {
    *this = {x, y, x, y};
    return;
  }
  minX = std::min(minX, x);
  minY = std::min(minY, y);
  maxX = std::max(maxX, x);
  maxY = std::max(maxY, y);
}

GroundPoint groundFromPixel(const ViewState& view, PixelPoint pixel) {
  const double unit = view.unitsPerPixel();
  const double x = (pixel.x - view.pixelWidth / 2.0) * unit;
  const double y = (view.pixelHeight / 2.0 - pixel.y) * unit;
  const double c = std::cos(view.twist);
  const double s = std::sin(view.twist);
  return {view.centerX + (x * c + y * s), view.centerY + (y * c - x * s)};
}

PixelPoint pixelFromGround(const ViewState& view, GroundPoint ground) {
  const double unit = view.unitsPerPixel();
  const double x = ground.x - view.centerX;
  const double y = ground.y - view.centerY;
  const double c = std::cos(view.twist);
  const double s = std::sin(view.twist);
  return {view.pixelWidth / 2.0 + (x * c - y * s) / unit,
          view.pixelHeight / 2.0 - (x * s + y * c) / unit};
}

namespace {

double boundedHeight(double height) {
  return std::clamp(height, 1e-6, 1e12);
}

}  // namespace

ViewState zoomedAt(const ViewState& view, PixelPoint pixel, double factor) {
  if (!std::isfinite(factor) || factor <= 0) return view;
  const GroundPoint fixed = groundFromPixel(view, pixel);
  ViewState out = view;
  out.height = boundedHeight(view.height / factor);
  const GroundPoint moved = groundFromPixel(out, pixel);
  out.centerX += fixed.x - moved.x;
  out.centerY += fixed.y - moved.y;
  return out;
}

ViewState pannedBy(const ViewState& view, double dx, double dy) {
  const GroundPoint center =
      groundFromPixel(view, {view.pixelWidth / 2.0 - dx, view.pixelHeight / 2.0 - dy});
  ViewState out = view;
  out.centerX = center.x;
  out.centerY = center.y;
  return out;
}

ViewState viewWithGroundAt(const ViewState& view, GroundPoint ground, PixelPoint pixel) {
  ViewState out = view;
  out.centerX = ground.x;
  out.centerY = ground.y;
  const GroundPoint there = groundFromPixel(out, pixel);
  out.centerX += ground.x - there.x;
  out.centerY += ground.y - there.y;
  return out;
}

ViewState fittedTo(const ViewState& view, const GroundBox& box, double margin) {
  if (box.isEmpty() || !std::isfinite(box.maxX - box.minX) || !std::isfinite(box.maxY - box.minY)) {
    return view;
  }
  ViewState out = view;
  out.centerX = box.minX + (box.maxX - box.minX) / 2;
  out.centerY = box.minY + (box.maxY - box.minY) / 2;
  // The box of the turned box, in screen directions.
  const double c = std::fabs(std::cos(view.twist));
  const double s = std::fabs(std::sin(view.twist));
  const double width = (box.maxX - box.minX) * c + (box.maxY - box.minY) * s;
  const double height = (box.maxX - box.minX) * s + (box.maxY - box.minY) * c;
  const double needed = std::max(height, width * view.pixelHeight / view.pixelWidth);
  if (needed > 0) out.height = boundedHeight(needed * (1 + 2 * margin));
  return out;
}

GroundBox groundBoxOf(const ViewState& view) {
  GroundBox box;
  const double w = view.pixelWidth;
  const double h = view.pixelHeight;
  for (const PixelPoint corner : {PixelPoint{0, 0}, {w, 0}, {0, h}, {w, h}}) {
    const GroundPoint p = groundFromPixel(view, corner);
    box.add(p.x, p.y);
  }
  return box;
}

}  // namespace tarn::host
