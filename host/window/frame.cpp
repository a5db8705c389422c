#include "host/window/frame.h"

#include <QPainter>
#include <QRegion>
#include <cmath>

namespace tarn::host {

std::optional<QPoint> wholePixelShift(const ViewState& from, const ViewState& to) {
  if (from.pixelWidth != to.pixelWidth || from.pixelHeight != to.pixelHeight ||
      from.height != to.height || from.twist != to.twist) {
    return std::nullopt;
  }
  const PixelPoint moved = pixelFromGround(to, {from.centerX, from.centerY});
  const double dx = moved.x - from.pixelWidth / 2.0;
  const double dy = moved.y - from.pixelHeight / 2.0;
  const double wholeX = std::round(dx);
  const double wholeY = std::round(dy);
  constexpr double kTolerance = 1e-3;
  if (!(std::abs(dx - wholeX) < kTolerance) || !(std::abs(dy - wholeY) < kTolerance) ||
      std::abs(wholeX) >= from.pixelWidth || std::abs(wholeY) >= from.pixelHeight) {
    return std::nullopt;
  }
  return QPoint(static_cast<int>(wholeX), static_cast<int>(wholeY));
}

void Frame::update(const ViewState& view, const Paint& paint) {
  const QSize size(view.pixelWidth, view.pixelHeight);
  const auto by = wholePixelShift(view_, view);
  if (!stale_ && image_.size() == size && by) {
    if (!by->isNull()) {
      shift(*by, paint);
      view_ = view;
    }
    return;
  }
  if (image_.size() != size) image_ = QImage(size, QImage::Format_RGB32);
  QPainter painter(&image_);
  paint(painter);
  view_ = view;
  stale_ = false;
}

void Frame::shift(QPoint by, const Paint& paint) {
  if (spare_.size() != image_.size()) spare_ = QImage(image_.size(), image_.format());
  std::swap(image_, spare_);
  QPainter painter(&image_);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(by, spare_);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  for (const QRect& bare : QRegion(image_.rect()) - QRegion(image_.rect().translated(by))) {
    painter.setClipRect(bare);
    paint(painter);
  }
}

}  // namespace tarn::host
