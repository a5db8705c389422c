#include "host/graphics/renderer.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "host/graphics/blit.h"
#include "host/graphics/color.h"
#include "host/graphics/points.h"

namespace tarn::host {

namespace {

/// Lines are cut this far outside the view, so that the painter never sees huge coordinates.
constexpr double kClipMargin = 16;
constexpr double kSmallestText = 1.5;   ///< pixels; below, a text is a short line
constexpr double kLargestText = 20000;  ///< pixels; above, a text is left out
constexpr int kBandPixels = 1 << 23;    ///< of points painted at a time

/// Cuts the segment a-b to the box; false when nothing is inside.
bool clipSegment(const QRectF& box, QPointF& a, QPointF& b) {
  const QPointF d = b - a;
  const double p[4] = {-d.x(), d.x(), -d.y(), d.y()};
  const double q[4] = {a.x() - box.left(), box.right() - a.x(), a.y() - box.top(),
                       box.bottom() - a.y()};
  double from = 0;
  double to = 1;
  for (int side = 0; side < 4; ++side) {
    if (p[side] == 0) {
      if (q[side] < 0) return false;
      continue;
    }
    const double t = q[side] / p[side];
    if (p[side] < 0) from = std::max(from, t);
    if (p[side] > 0) to = std::min(to, t);
  }
  if (!(from <= to)) return false;
  b = a + d * to;
  a = a + d * from;
  return true;
}

/// One side of cutting a polygon to a box: keeps what is on the inner side of `limit`.
QPolygonF clipSide(const QPolygonF& in, bool alongX, double limit, bool keepGreater) {
  const auto value = [&](const QPointF& p) { return alongX ? p.x() : p.y(); };
  const auto inside = [&](const QPointF& p) {
    return keepGreater ? value(p) >= limit : value(p) <= limit;
  };
  QPolygonF out;
  for (int i = 0; i < in.size(); ++i) {
    const QPointF& a = in[i];
    const QPointF& b = in[(i + 1) % in.size()];
    if (inside(a)) out << a;
    if (inside(a) != inside(b)) out << a + (b - a) * ((limit - value(a)) / (value(b) - value(a)));
  }
  return out;
}

class Painter {
 public:
  Painter(QPainter& painter, const ViewState& view, const RenderStyle& style)
      : painter_(painter),
        view_(view),
        style_(style),
        clip_(QRectF(0, 0, view.pixelWidth, view.pixelHeight)
                  .adjusted(-kClipMargin, -kClipMargin, kClipMargin, kClipMargin)) {}

  void operator()(const LineItem& item) const {
    painter_.setPen(pen(QColor(colorOfIndex(item.color, style_.background))));
    if (item.points.size() == 1) {
      painter_.drawPoint(device(item.points.front()));
      return;
    }
    if (style_.lineWidth > 0) return drawRuns(item.points);
    for (size_t i = 1; i < item.points.size(); ++i) {
      QPointF a = device(item.points[i - 1]);
      QPointF b = device(item.points[i]);
      if (clipSegment(clip_, a, b)) painter_.drawLine(a, b);
    }
  }

  void operator()(const AreaItem& item) const {
    if (!item.filled) {
      LineItem outline{item.points, item.color};
      if (!outline.points.empty()) outline.points.push_back(outline.points.front());
      (*this)(outline);
      return;
    }
    QPolygonF polygon;
    for (const GroundPoint& p : item.points) polygon << device(p);
    polygon = clipSide(polygon, true, clip_.left(), true);
    polygon = clipSide(polygon, true, clip_.right(), false);
    polygon = clipSide(polygon, false, clip_.top(), true);
    polygon = clipSide(polygon, false, clip_.bottom(), false);
    if (polygon.isEmpty()) return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(QColor(colorOfIndex(item.color, style_.background)));
    painter_.drawPolygon(polygon);
    painter_.setBrush(Qt::NoBrush);
  }

  void operator()(const TextItem& item) const {
    const double pixels = item.height / view_.unitsPerPixel();
    const double angle = std::atan2(item.direction.y, item.direction.x) + view_.twist;
    const QPointF at = device(item.position);
    if (!(pixels <= kLargestText) || !std::isfinite(at.x() + at.y())) return;
    const QColor color(colorOfIndex(item.color, style_.background));
    if (pixels < kSmallestText) {
      const double length = pixels * 0.7 * item.text.size();
      QPointF a = at;
      QPointF b = at + QPointF(std::cos(angle), -std::sin(angle)) * length;
      painter_.setPen(pen(color));
      if (clipSegment(clip_, a, b)) painter_.drawLine(a, b);
      return;
    }
    drawGlyphs(item, at, pixels, angle, color);
  }

  void operator()(const ImageItem& item) const {
    if (style_.placeImages) return placeImage(item);
    const BlitPlan plan = planBlit(item, view_);
    if (plan.mode == BlitMode::kNothing) return;
    if (plan.mode == BlitMode::kExact) {
      painter_.drawImage(plan.exactTarget, item.image);
      return;
    }
    QPoint target;
    const QImage pixels = resample(item.image, plan, view_.pixelWidth, view_.pixelHeight, target);
    if (!pixels.isNull()) painter_.drawImage(target, pixels);
  }

  /// In bands, so that a large plot needs little memory.
  void operator()(const PointsItem& item) const {
    QRect left(0, 0, view_.pixelWidth, view_.pixelHeight);
    if (painter_.hasClipping()) left &= painter_.clipBoundingRect().toAlignedRect();
    const int band = std::max(1, kBandPixels / std::max(1, left.width()));
    for (int top = left.top(); top <= left.bottom(); top += band) {
      const QRect part(left.left(), top, left.width(), std::min(band, left.bottom() - top + 1));
      const QImage pixels = paintPoints(item, view_, part);
      if (!pixels.isNull()) painter_.drawImage(part.topLeft(), pixels);
    }
  }

 private:
  QPointF device(const GroundPoint& ground) const {
    const PixelPoint p = pixelFromGround(view_, ground);
    return {p.x, p.y};
  }

  QPen pen(const QColor& color) const {
    return QPen(color, style_.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
  }

  /// The line in pieces as long as it stays inside, so that its corners are joined.
  void drawRuns(const std::vector<GroundPoint>& points) const {
    QPolygonF run;
    const auto finish = [&] {
      if (run.size() > 1) painter_.drawPolyline(run);
      run.clear();
    };
    for (size_t i = 1; i < points.size(); ++i) {
      QPointF a = device(points[i - 1]);
      QPointF b = device(points[i]);
      const QPointF end = b;
      if (!clipSegment(clip_, a, b)) {
        finish();
        continue;
      }
      if (run.isEmpty() || run.last() != a) finish();
      if (run.isEmpty()) run << a;
      run << b;
      if (b != end) finish();
    }
    finish();
  }

  void placeImage(const ImageItem& item) const {
    const int w = item.image.width();
    const int h = item.image.height();
    const GroundPoint top{item.origin.x + item.v.x, item.origin.y + item.v.y};
    const QPointF corner = device(top);
    const QPointF across = (device({top.x + item.u.x, top.y + item.u.y}) - corner) / w;
    const QPointF down = (device(item.origin) - corner) / h;
    painter_.save();
    painter_.setRenderHint(QPainter::LosslessImageRendering, true);
    painter_.setTransform(
        QTransform(across.x(), across.y(), down.x(), down.y(), corner.x(), corner.y()), true);
    painter_.drawImage(0, 0, item.image);
    painter_.restore();
  }

  void drawGlyphs(const TextItem& item, QPointF at, double pixels, double angle,
                  const QColor& color) const {
    constexpr int kDesignSize = 64;
    QFont font;
    font.setFamilies(style_.fontFamilies);
    font.setPixelSize(kDesignSize);
    const double capital = QFontMetricsF(font).capHeight();
    const double scale = pixels / (capital > 0 ? capital : kDesignSize * 0.72);
    QPainterPath path;
    path.addText(0, 0, font, item.text);
    QTransform place;
    place.translate(at.x(), at.y());
    place.rotateRadians(-angle);
    place.shear(-std::tan(item.oblique), 0);
    place.scale(scale * item.widthFactor, scale);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.fillPath(place.map(path), color);
    painter_.setRenderHint(QPainter::Antialiasing, false);
  }

  QPainter& painter_;
  const ViewState& view_;
  const RenderStyle& style_;
  QRectF clip_;
};

}  // namespace

void paintScene(QPainter& painter, const Scene& scene, const ViewState& view,
                const RenderStyle& style) {
  const Painter paint(painter, view, style);
  for (const Scene::Key entity : scene.order()) {
    for (const DisplayItem& item : *scene.find(entity)) std::visit(paint, item);
  }
}

void render(QPainter& painter, const Scene& scene, const ViewState& view,
            const RenderStyle& style) {
  painter.save();
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
  painter.setClipRect(0, 0, view.pixelWidth, view.pixelHeight);
  painter.fillRect(0, 0, view.pixelWidth, view.pixelHeight, QColor(style.background));
  paintScene(painter, scene, view, style);
  painter.restore();
}

}  // namespace tarn::host
