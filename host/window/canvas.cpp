#include "host/window/canvas.h"

#include <QContextMenuEvent>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QWheelEvent>
#include <cmath>
#include <utility>

#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/window/mousemessage.h"

namespace tarn::host {

namespace {

constexpr double kZoomPerNotch = 1.25;
constexpr int kUnitsPerNotch = 120;
constexpr int kClickSlack = 4;  ///< device pixels that a click may move
constexpr QRgb kEmptyCanvas = 0xff212830;

/// A light cross with a dark rim: seen on every ground. The middle stays open, so that the pixel
/// aimed at is visible; around it a box where entities are chosen.
QCursor crosshair(Aim aim, int pickBox, double ratio) {
  constexpr int kMiddle = 31;
  constexpr int kSide = 2 * kMiddle + 1;
  const bool hasBox = aim == Aim::kCommand || aim == Aim::kSelect;
  const int box = qRound(qBound(2 * ratio, 1.0 * pickBox, 20 * ratio) / ratio);
  const int gap = hasBox ? box : 3;
  QPixmap shape(QSize(kSide, kSide) * ratio);
  shape.setDevicePixelRatio(ratio);
  shape.fill(Qt::transparent);
  QPainter painter(&shape);
  const auto draw = [&](int thick, const QColor& color) {
    const int side = thick / 2;
    const int length = kMiddle - gap;
    const int end = kMiddle + gap + 1;
    if (aim != Aim::kSelect) {
      painter.fillRect(kMiddle - side, 1 - side, thick, length + side, color);
      painter.fillRect(kMiddle - side, end, thick, length - 1 + side, color);
      painter.fillRect(1 - side, kMiddle - side, length + side, thick, color);
      painter.fillRect(end, kMiddle - side, length - 1 + side, thick, color);
    }
    if (!hasBox) return;
    painter.setPen(QPen(color, thick, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(QRectF(kMiddle - box + 0.5, kMiddle - box + 0.5, 2 * box, 2 * box));
  };
  draw(3, QColor(0, 0, 0, 130));
  draw(1, QColor(255, 255, 255, 235));
  painter.end();
  return QCursor(shape, kMiddle, kMiddle);
}

}  // namespace

Canvas::Canvas(HostApp& app, Hooks hooks) : app_(app), hooks_(std::move(hooks)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setMinimumSize(160, 120);
  showCursor();
  settleTimer_.setSingleShot(true);
  settleTimer_.setInterval(kSettleMilliseconds);
  QObject::connect(&settleTimer_, &QTimer::timeout, this, [this] { settle(); });
}

void Canvas::setAim(Aim aim, int pickBox) {
  if (aim == aim_ && pickBox == pickBox_) return;
  aim_ = aim;
  pickBox_ = pickBox;
  if (!dragging_) showCursor();
}

void Canvas::showCursor() {
  if (aim_ == Aim::kNothing) {
    setCursor(Qt::BusyCursor);
  } else {
    setCursor(crosshair(aim_, pickBox_, devicePixelRatioF()));
  }
}

void Canvas::contextMenuEvent(QContextMenuEvent* event) {
  if (hooks_.mayAct() && !dragging_) hooks_.menuWanted(event->globalPos());
}

void Canvas::contentChanged() {
  if (!onlyViewMoves_) {
    frame_.invalidate();
    contentSeen_ = true;
  }
  update();
}

void Canvas::settleLater() {
  settleTimer_.start();
}

void Canvas::settleNow() {
  if (settleTimer_.isActive()) settle();
}

void Canvas::settle() {
  if (dragging_ || !hooks_.mayAct()) {
    settleTimer_.start();
    return;
  }
  const QSize size = deviceSize();
  app_.resizeView(size.width(), size.height());
  settleTimer_.stop();
  app_.regenerateForView();
  hooks_.acted();
}

void Canvas::zoomExtents() {
  if (!app_.zoomExtents()) hooks_.nothingToShow();
  settleTimer_.stop();
  hooks_.acted();
}

QSize Canvas::deviceSize() const {
  const double ratio = devicePixelRatioF();
  return {qMax(1, qRound(width() * ratio)), qMax(1, qRound(height() * ratio))};
}

QPoint Canvas::devicePixel(QPointF local) const {
  const double ratio = devicePixelRatioF();
  // A little is added, since 10 / 1.25 * 1.25 may come out below 10.
  return {static_cast<int>(std::floor(local.x() * ratio + 1e-6)),
          static_cast<int>(std::floor(local.y() * ratio + 1e-6))};
}

GroundPoint Canvas::groundAt(QPointF local) const {
  const QPoint pixel = devicePixel(local);
  return app_.groundAt({pixel.x() + 0.5, pixel.y() + 0.5});
}

void Canvas::paintEvent(QPaintEvent*) {
  const QSize size = deviceSize();
  const ViewState view = app_.screenView();
  if (hooks_.mayAct() && view.pixelWidth == size.width() && view.pixelHeight == size.height()) {
    // What is drawn in the model is only read; a sheet is looked up in the drawing while it is
    // painted.
    const bool atOnce = app_.documents().current().space().isTiled();
    frame_.update(
        view, [&](QPainter& painter) { app_.renderTo(painter, view.pixelWidth, view.pixelHeight); },
        atOnce);
  }
  QPainter painter(this);
  if (frame_.image().size() != size) painter.fillRect(rect(), QColor(kEmptyCanvas));
  if (frame_.image().isNull()) return;
  QImage shown = frame_.image();
  shown.setDevicePixelRatio(devicePixelRatioF());
  painter.drawImage(0, 0, shown);
  if (!hooks_.mayAct()) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
  // The view may have moved under a mouse that stands still.
  if (mouse_) hooks_.hovered(groundAt(*mouse_));
  hooks_.paintOver(painter);
}

void Canvas::resizeEvent(QResizeEvent*) {
  if (hooks_.mayAct()) {
    const QSize size = deviceSize();
    app_.resizeView(size.width(), size.height());
  }
  settleLater();
}

void Canvas::tellWatchers(UINT message, const QMouseEvent& event) {
  MouseState state;
  state.canvas = devicePixel(event.localPos());
  state.screen = devicePixel(event.screenPos());
  state.buttons = event.buttons();
  state.modifiers = event.modifiers();
  state.milliseconds = event.timestamp();
  app_.dispatchWindowMessage(mouseMessage(message, state));
}

void Canvas::mousePressEvent(QMouseEvent* event) {
  if (!hooks_.mayAct() || dragging_) return;
  if (event->button() == Qt::LeftButton) {
    leftDown_ = true;
    pressedAt_ = devicePixel(event->localPos());
    leftMayPan_ = hooks_.leftPans();
    if (!leftMayPan_) hooks_.pressed(groundAt(event->localPos()));
  }
  if (event->button() != Qt::MiddleButton) return;
  tellWatchers(WM_MBUTTONDOWN, *event);
  beginDrag(*event);
}

void Canvas::beginDrag(const QMouseEvent& event) {
  dragging_ = true;
  moved_ = false;
  dragFrom_ = devicePixel(event.localPos());
  setCursor(Qt::ClosedHandCursor);
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
  if (!hooks_.mayAct()) return;
  if (leftMayPan_ && !dragging_ &&
      (devicePixel(event->localPos()) - pressedAt_).manhattanLength() > kClickSlack) {
    beginDrag(*event);
    dragFrom_ = pressedAt_;
  }
  if (dragging_) dragTo(event->localPos());
  mouse_ = event->localPos();
  hooks_.hovered(groundAt(*mouse_));
  update();
}

void Canvas::leaveEvent(QEvent*) {
  mouse_.reset();
  hooks_.left();
  update();
}

void Canvas::dragTo(QPointF local) {
  const QPoint now = devicePixel(local);
  const QPoint by = now - dragFrom_;
  if (by.isNull()) return;
  dragFrom_ = now;
  moved_ = true;
  // A pan inside a viewport does not move the picture of the screen as a whole.
  onlyViewMoves_ = !app_.inViewport();
  app_.panBy(by.x(), by.y());
  onlyViewMoves_ = false;
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
  const bool leftPans = leftMayPan_ && dragging_;
  if (event->button() == Qt::MiddleButton && !leftPans) return endDrag(*event, WM_MBUTTONUP);
  if (event->button() != Qt::LeftButton || !std::exchange(leftDown_, false)) return;
  leftMayPan_ = false;
  if (leftPans) return endDrag(*event, WM_LBUTTONUP);
  if (!hooks_.mayAct()) return;
  tellWatchers(WM_LBUTTONUP, *event);
  if (!rect().contains(event->pos())) return;
  const QPoint by = devicePixel(event->localPos()) - pressedAt_;
  hooks_.released(groundAt(event->localPos()), by.manhattanLength() > kClickSlack,
                  (event->modifiers() & Qt::ShiftModifier) != 0);
}

/// The view follows the mouse to where the button was let go; then the watchers hear of it, and
/// what none of them has drawn anew is regenerated.
void Canvas::endDrag(const QMouseEvent& event, UINT message) {
  if (!dragging_) return;
  dragging_ = false;
  showCursor();
  if (!hooks_.mayAct()) {
    settleLater();
    return;
  }
  dragTo(event.localPos());
  contentSeen_ = false;
  tellWatchers(message, event);
  settleTimer_.stop();
  app_.viewSettled();
  if (moved_ && !contentSeen_) app_.regenerateForView();
  hooks_.acted();
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
  if (!hooks_.mayAct() || dragging_) return;
  if (event->button() == Qt::LeftButton) {
    const QPoint pixel = devicePixel(event->localPos());
    if (app_.workAt({pixel.x() + 0.5, pixel.y() + 0.5})) {
      hooks_.letGo();
      hooks_.acted();
    } else {
      // Two quick clicks are two clicks.
      mousePressEvent(event);
    }
    return;
  }
  if (event->button() != Qt::MiddleButton) return;
  tellWatchers(WM_MBUTTONDOWN, *event);
  zoomExtents();
  beginDrag(*event);
}

void Canvas::wheelEvent(QWheelEvent* event) {
  const int delta = event->angleDelta().y();
  if (!hooks_.mayAct() || delta == 0) return;
  MouseState state;
  state.canvas = devicePixel(event->position());
  state.screen = devicePixel(event->globalPosition());
  state.buttons = event->buttons();
  state.modifiers = event->modifiers();
  state.wheelDelta = delta;
  state.milliseconds = event->timestamp();
  app_.dispatchWindowMessage(mouseMessage(WM_MOUSEWHEEL, state));
  const double factor = std::pow(kZoomPerNotch, static_cast<double>(delta) / kUnitsPerNotch);
  app_.zoomAt({state.canvas.x() + 0.5, state.canvas.y() + 0.5}, factor);
  settleLater();
  mouse_ = event->position();
  hooks_.hovered(groundAt(*mouse_));
  event->accept();
}

}  // namespace tarn::host
