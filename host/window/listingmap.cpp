#include "host/window/listingmap.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QTransform>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <optional>

#include "host/window/words.h"

namespace tarn::host {

namespace {

constexpr double kNotch = 120, kZoomNotch = 1.25, kFitMargin = 0.08;
const QColor kGround(0x1b, 0x1e, 0x22);
const QColor kFootprint(0x3f, 0xa7, 0xff);
const QColor kChosen(0xff, 0xb0, 0x30);
const QColor kVeil(0, 0, 0, 90);

QPointF point(const ViewState& view, GroundPoint ground) {
  const PixelPoint pixel = pixelFromGround(view, ground);
  return {pixel.x, pixel.y};
}

}  // namespace

ListingMap::ListingMap(QWidget* parent) : QWidget(parent) {
  setMinimumSize(280, 200);
  setMouseTracking(false);
  setToolTip(words("Wheel: zoom. Drag: move. Click: choose; with Ctrl: choose more."));
}

void ListingMap::setDrawing(const QImage& picture, const ViewState& view) {
  picture_ = picture;
  drawing_ = view;
  follow();
}

void ListingMap::setFootprints(std::vector<GroundBox> footprints, std::vector<bool> chosen) {
  footprints_ = std::move(footprints);
  chosen_ = std::move(chosen);
  follow();
}

void ListingMap::follow() {
  if (!isMoved_) {
    fitDrawing();
    const GroundBox seen = groundBoxOf(view_);
    const bool isAnySeen =
        std::any_of(footprints_.begin(), footprints_.end(), [&](const GroundBox& box) {
          return !box.isEmpty() && box.maxX > seen.minX && box.minX < seen.maxX &&
                 box.maxY > seen.minY && box.minY < seen.maxY;
        });
    if (!isAnySeen) fitFootprints();
  }
  update();
}

void ListingMap::showDrawing() {
  isMoved_ = true;
  fitDrawing();
  update();
}

void ListingMap::showFootprints() {
  isMoved_ = true;
  fitFootprints();
  update();
}

void ListingMap::fitDrawing() {
  const double aspect = static_cast<double>(drawing_.pixelWidth) / drawing_.pixelHeight;
  view_ = drawing_;
  view_.pixelWidth = std::max(width(), 1);
  view_.pixelHeight = std::max(height(), 1);
  const double needed = drawing_.height * aspect * view_.pixelHeight / view_.pixelWidth;
  view_.height = std::max(drawing_.height, needed);
}

void ListingMap::fitFootprints() {
  GroundBox all;
  for (const GroundBox& box : footprints_) {
    if (box.isEmpty()) continue;
    all.add(box.minX, box.minY);
    all.add(box.maxX, box.maxY);
  }
  view_ = fittedTo(view_, all, kFitMargin);
}

QPolygonF ListingMap::outline(const GroundBox& box) const {
  return QPolygonF({point(view_, {box.minX, box.minY}), point(view_, {box.maxX, box.minY}),
                    point(view_, {box.maxX, box.maxY}), point(view_, {box.minX, box.maxY})});
}

/// The picture where its ground lies.
void ListingMap::paintDrawing(QPainter& painter) const {
  if (picture_.isNull()) return;
  const auto place = [&](double x, double y) {
    return point(view_, groundFromPixel(drawing_, {x, y}));
  };
  const double right = drawing_.pixelWidth, bottom = drawing_.pixelHeight;
  const QPointF origin = place(0, 0);
  const QPointF across = (place(right, 0) - origin) / picture_.width();
  const QPointF down = (place(0, bottom) - origin) / picture_.height();
  painter.save();
  painter.setTransform(
      QTransform(across.x(), across.y(), down.x(), down.y(), origin.x(), origin.y()), true);
  painter.drawImage(0, 0, picture_);
  painter.fillRect(picture_.rect(), kVeil);
  painter.restore();
}

void ListingMap::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.fillRect(rect(), kGround);
  paintDrawing(painter);
  painter.setRenderHint(QPainter::Antialiasing);
  // What is chosen lies on top.
  for (const bool top : {false, true}) {
    QColor color = top ? kChosen : kFootprint;
    painter.setPen(QPen(color, top ? 2 : 1));
    color.setAlpha(top ? 70 : 25);
    painter.setBrush(color);
    for (size_t i = 0; i < footprints_.size(); ++i)
      if (!footprints_[i].isEmpty() && chosen_[i] == top)
        painter.drawPolygon(outline(footprints_[i]));
  }
}

void ListingMap::resizeEvent(QResizeEvent*) {
  // The scale stays.
  view_.height *= std::max(height(), 1) / static_cast<double>(view_.pixelHeight);
  view_.pixelWidth = std::max(width(), 1);
  view_.pixelHeight = std::max(height(), 1);
  follow();
}

void ListingMap::wheelEvent(QWheelEvent* event) {
  isMoved_ = true;
  const double factor = std::pow(kZoomNotch, event->angleDelta().y() / kNotch);
  view_ = zoomedAt(view_, {event->position().x(), event->position().y()}, factor);
  update();
}

void ListingMap::mousePressEvent(QMouseEvent* event) {
  pressed_ = last_ = event->pos();
  isDragged_ = false;
}

void ListingMap::mouseMoveEvent(QMouseEvent* event) {
  if ((event->pos() - pressed_).manhattanLength() >= QApplication::startDragDistance())
    isDragged_ = isMoved_ = true;
  if (!isDragged_) return;
  const QPoint moved = event->pos() - last_;
  last_ = event->pos();
  view_ = pannedBy(view_, moved.x(), moved.y());
  update();
}

void ListingMap::mouseReleaseEvent(QMouseEvent* event) {
  if (isDragged_ || event->button() != Qt::LeftButton || !clicked) return;
  const GroundPoint at =
      groundFromPixel(view_, {double(event->pos().x()), double(event->pos().y())});
  std::optional<size_t> best;
  const auto area = [&](size_t i) {
    return (footprints_[i].maxX - footprints_[i].minX) *
           (footprints_[i].maxY - footprints_[i].minY);
  };
  for (size_t i = 0; i < footprints_.size(); ++i) {
    const GroundBox& box = footprints_[i];
    if (at.x < box.minX || at.x > box.maxX || at.y < box.minY || at.y > box.maxY) continue;
    if (!best || area(i) < area(*best)) best = i;
  }
  if (best) clicked(*best, (event->modifiers() & Qt::ControlModifier) != 0);
}

}  // namespace tarn::host
