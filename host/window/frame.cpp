#include "host/window/frame.h"

#include <QPainter>
#include <QRegion>
#include <algorithm>
#include <cmath>

#include "base/parallel.h"

namespace tarn::host {

namespace {

/// A smaller picture is painted sooner than threads are woken.
constexpr int kPixelsOfAPart = 200000;
constexpr size_t kMostParts = 4;

}  // namespace

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

void Frame::update(const ViewState& view, const Paint& paint, bool atOnce) {
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
  const size_t worthwhile = static_cast<size_t>(size.width()) * size.height() / kPixelsOfAPart;
  const size_t most = std::min<size_t>(workerCount(), kMostParts);
  paintParts(atOnce ? std::clamp<size_t>(worthwhile, 1, most) : 1, paint);
  view_ = view;
  stale_ = false;
}

/// Every part has a painter of its own on the same pixels, cut to its rows.
void Frame::paintParts(size_t parts, const Paint& paint) {
  uchar* const pixels = image_.bits();
  crew_.run(parts, [&](size_t part) {
    QImage shared(pixels, image_.width(), image_.height(), image_.bytesPerLine(), image_.format());
    const auto edge = [&](size_t at) { return static_cast<int>(image_.height() * at / parts); };
    QPainter painter(&shared);
    if (parts > 1) {
      painter.setClipRect(0, edge(part), image_.width(), edge(part + 1) - edge(part));
    }
    paint(painter);
  });
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
