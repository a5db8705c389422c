#include "host/graphics/pixellines.h"

#include <QPainter>
#include <QRegion>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tarn::host {

namespace {

constexpr double kOne = 4294967296.0;  ///< a pixel in fixed point

std::int64_t fixed(double value) {
  return static_cast<std::int64_t>(std::floor(value * kOne));
}

}  // namespace

std::optional<PixelLines> PixelLines::on(const QPainter& painter, const QRect& within) {
  QPaintDevice* device = painter.device();
  if (device == nullptr || device->devType() != QInternal::Image ||
      !painter.deviceTransform().isIdentity()) {
    return std::nullopt;
  }
  QImage& picture = *static_cast<QImage*>(device);
  const bool isPlain = picture.format() == QImage::Format_RGB32 ||
                       picture.format() == QImage::Format_ARGB32_Premultiplied;
  if (!isPlain || (painter.hasClipping() && painter.clipRegion().rectCount() > 1)) {
    return std::nullopt;
  }
  return PixelLines(picture, within & picture.rect());
}

PixelLines::PixelLines(QImage& picture, const QRect& clip)
    : bits_(reinterpret_cast<QRgb*>(picture.bits())),
      stride_(picture.bytesPerLine() / 4),
      clip_(clip) {}

void PixelLines::draw(QPointF a, QPointF b, QRgb color) {
  const bool isFlat = std::fabs(b.x() - a.x()) >= std::fabs(b.y() - a.y());
  // From here on the line runs along its longer axis, whichever that is.
  double along = isFlat ? a.x() : a.y();
  double across = isFlat ? a.y() : a.x();
  double alongEnd = isFlat ? b.x() : b.y();
  double acrossEnd = isFlat ? b.y() : b.x();
  if (along > alongEnd) {
    std::swap(along, alongEnd);
    std::swap(across, acrossEnd);
  }
  const double slope = alongEnd > along ? (acrossEnd - across) / (alongEnd - along) : 0;
  const int least = isFlat ? clip_.left() : clip_.top();
  const int most = isFlat ? clip_.right() : clip_.bottom();
  const int low = isFlat ? clip_.top() : clip_.left();
  const auto room = static_cast<std::uint64_t>(isFlat ? clip_.height() : clip_.width());
  const int first = std::max(static_cast<int>(std::floor(along)), least);
  const int last = std::min(static_cast<int>(std::floor(alongEnd)), most);
  const qsizetype alongStep = isFlat ? 1 : stride_;
  const qsizetype acrossStep = isFlat ? stride_ : 1;
  // Between the ends the middle of a pixel counts; at them, the end itself.
  const auto at = [&](int pixel) {
    return fixed(across + slope * (std::clamp(pixel + 0.5, along, alongEnd) - along));
  };
  const std::int64_t step = static_cast<std::int64_t>(slope * kOne);
  std::int64_t place = 0;
  for (int i = first; i <= last; ++i) {
    place = i <= first + 1 || i == last ? at(i) : place + step;
    const std::int64_t pixel = place >> 32;
    if (static_cast<std::uint64_t>(pixel - low) >= room) continue;
    bits_[i * alongStep + pixel * acrossStep] = color;
  }
}

}  // namespace tarn::host
