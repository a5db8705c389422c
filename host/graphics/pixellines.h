// Lines one pixel wide, straight into the pixels of a picture. Each pixel whose middle is nearest
// to the line along its longer axis is set, whatever part of the line is asked for, so that strips
// painted one after the other fit together; and it takes a fraction of the painter's time.
#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>
#include <optional>

class QPainter;

namespace tarn::host {

class PixelLines {
 public:
  /// Lines into what the painter paints on, inside its clip; nothing when that is no 32-bit
  /// picture, when the painter is transformed or its clip no rectangle. Use it only while the
  /// painter is active.
  static std::optional<PixelLines> on(const QPainter& painter, const QRect& within);

  /// Positions are pixel edges; both must lie within some thousands of pixels of the picture.
  void draw(QPointF a, QPointF b, QRgb color);

 private:
  PixelLines(QImage& picture, const QRect& clip);

  QRgb* bits_;
  qsizetype stride_;  ///< pixels
  QRect clip_;
};

}  // namespace tarn::host
