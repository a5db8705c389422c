// The last picture of the drawing, kept so that the canvas paints from it. Panning by whole pixels
// moves the picture and draws only the strips that came into view.
#pragma once

#include <QImage>
#include <QPoint>
#include <functional>
#include <optional>

#include "host/graphics/viewstate.h"
#include "host/window/crew.h"

class QPainter;

namespace tarn::host {

/// The shift in pixels that turns the picture of `from` into that of `to`; nothing when the two
/// views differ by more than a pan of whole pixels.
std::optional<QPoint> wholePixelShift(const ViewState& from, const ViewState& to);

class Frame {
 public:
  /// Paints the whole view onto a painter whose clip may leave only a part of it.
  using Paint = std::function<void(QPainter&)>;

  /// The content has changed: the next update draws everything.
  void invalidate() { stale_ = true; }

  /// Brings the picture up to `view`; does nothing when it is up to date. With `atOnce` several
  /// threads may call `paint` at the same time, each for a part of a large picture.
  void update(const ViewState& view, const Paint& paint, bool atOnce = false);

  /// The picture, one pixel a device pixel; null before the first update.
  const QImage& image() const { return image_; }
  const ViewState& view() const { return view_; }

 private:
  void shift(QPoint by, const Paint& paint);
  void paintParts(size_t parts, const Paint& paint);

  QImage image_;
  QImage spare_;
  ViewState view_;
  bool stale_ = true;
  Crew crew_;
};

}  // namespace tarn::host
