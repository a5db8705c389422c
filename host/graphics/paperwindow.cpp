#include "host/graphics/paperwindow.h"

#include <algorithm>
#include <cmath>

#include "dbents.h"

namespace tarn::host {

namespace {

/// Rounding must not make a window touch one pixel more.
constexpr double kEdge = 1e-6;

}  // namespace

PaperWindow paperWindowOf(const AcDbViewport& viewport) {
  const AcGePoint3d center = viewport.centerPoint();
  const AcGePoint3d target = viewport.viewTarget();
  const AcGePoint2d shown = viewport.viewCenter();
  const double c = std::cos(viewport.twistAngle());
  const double s = std::sin(viewport.twistAngle());
  PaperWindow window;
  window.paperCenter = {center.x, center.y};
  window.paperWidth = viewport.width();
  window.paperHeight = viewport.height();
  window.viewCenter = {target.x + shown.x * c + shown.y * s, target.y + shown.y * c - shown.x * s};
  window.viewHeight = viewport.viewHeight();
  window.twist = viewport.twistAngle();
  return window;
}

void showInViewport(AcDbViewport& viewport, GroundPoint center, double height, double twist) {
  // The target takes the place of the centre, so that nothing is lost by turning large coordinates.
  viewport.setViewTarget(AcGePoint3d(center.x, center.y, 0));
  viewport.setViewCenter(AcGePoint2d(0, 0));
  viewport.setViewHeight(height);
  viewport.setTwistAngle(twist);
}

QRectF deviceRectOf(const PaperWindow& window, const ViewState& paper) {
  const GroundPoint& c = window.paperCenter;
  const double w = window.paperWidth / 2;
  const double h = window.paperHeight / 2;
  const PixelPoint a = pixelFromGround(paper, {c.x - w, c.y - h});
  const PixelPoint b = pixelFromGround(paper, {c.x + w, c.y + h});
  return QRectF(QPointF(std::min(a.x, b.x), std::min(a.y, b.y)),
                QPointF(std::max(a.x, b.x), std::max(a.y, b.y)));
}

ViewState throughWindow(const PaperWindow& window, const ViewState& paper) {
  ViewState view = paper;
  view.height = paper.height * window.groundPerPaper();
  view.twist = window.twist + paper.twist;
  return viewWithGroundAt(view, window.viewCenter, pixelFromGround(paper, window.paperCenter));
}

QRect touchedPixels(const QRectF& rect, const ViewState& device) {
  const auto bounded = [](double value, int limit) {
    return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(limit)));
  };
  const int left = bounded(std::floor(rect.left() + kEdge), device.pixelWidth);
  const int top = bounded(std::floor(rect.top() + kEdge), device.pixelHeight);
  const int right = bounded(std::ceil(rect.right() - kEdge), device.pixelWidth);
  const int bottom = bounded(std::ceil(rect.bottom() - kEdge), device.pixelHeight);
  return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

ViewState croppedView(const ViewState& view, const QRect& pixels) {
  ViewState part = view;
  const GroundPoint center = groundFromPixel(
      view, {pixels.left() + pixels.width() / 2.0, pixels.top() + pixels.height() / 2.0});
  part.centerX = center.x;
  part.centerY = center.y;
  part.height = view.unitsPerPixel() * pixels.height();
  part.pixelWidth = pixels.width();
  part.pixelHeight = pixels.height();
  return part;
}

}  // namespace tarn::host
