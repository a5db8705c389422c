#include "host/graphics/renderer.h"

#include <QLineF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>
#include <QTransform>
#include <QVector>
#include <algorithm>
#include <cmath>
#include <optional>

#include "host/graphics/blit.h"
#include "host/graphics/color.h"
#include "host/graphics/dashes.h"
#include "host/graphics/pixellines.h"
#include "host/graphics/points.h"
#include "host/graphics/textoutlines.h"

namespace tarn::host {

namespace {

/// Lines are cut this far outside the view, so that the painter never sees huge coordinates.
/// The widest line reaches this far too.
constexpr double kClipMargin = 64;
/// Corners of a line nearer than this to the one before are left out on a screen: nobody sees them.
constexpr double kSmallestStep = 1;  ///< pixels
constexpr double kFineLine = 1.5;    ///< pixels; a line of less is one pixel wide
constexpr double kFarAway = 1e6;     ///< pixels; a line to there is cut at the view
constexpr int kMostLines = 4096;     ///< gathered before they are painted
/// Pixels; a smaller text is a short line. On a screen nobody can read it.
constexpr double kSmallestText = 1.5;
constexpr double kSmallestTextOnScreen = 4;
constexpr double kLargestText = 20000;  ///< pixels; above, a text is left out
// Lines along texts, in heights of a capital from the base line down.
constexpr double kUnderline = 0.22;
constexpr double kOverline = -1.22;
constexpr int kBandPixels = 1 << 23;  ///< of points painted at a time

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
  Painter(QPainter& painter, const ViewState& view, const RenderStyle& style,
          const PointLook& points)
      : painter_(painter),
        view_(view),
        style_(style),
        points_(points),
        cosine_(std::cos(view.twist)),
        sine_(std::sin(view.twist)),
        unit_(view.unitsPerPixel()),
        perUnit_(1 / unit_),
        wanted_(wantedPixels(painter, view)),
        clip_(widened(QRectF(wanted_), kClipMargin)),
        left_(clip_.left()),
        top_(clip_.top()),
        right_(clip_.right()),
        bottom_(clip_.bottom()),
        shown_(groundOf(widened(clip_, markReach()))) {
    if (style.lineWidth == 0) pixelLines_ = PixelLines::on(painter, wanted_);
  }
  ~Painter() { flush(); }
  Painter(const Painter&) = delete;
  Painter& operator=(const Painter&) = delete;

  void paint(const Drawn& drawn) {
    if (!drawn.isEverywhere && !meets(drawn.box, shown_)) return;
    for (const DisplayItem& item : drawn.list) std::visit(*this, item);
  }

  void operator()(const LineItem& item) {
    const double width = widthOf(item);
    const QColor color = colorOf(item.color, item.alpha);
    const bool isFine = width == 0 && item.alpha == 255;
    if (item.dashes != nullptr && item.dashes->period * perUnit_ >= kSmallestPeriod) {
      return drawDashes(item, color, width, isFine);
    }
    if (item.points.size() > 1 && isFine) return gather(item, color.rgb());
    if (item.points.size() == 1) return drawMark(device(item.points.front()), color, width);
    flush();
    painter_.setPen(pen(color, width));
    drawRuns(item.points);
  }

  void operator()(const AreaItem& item) {
    if (!item.filled) return drawRims(item);
    flush();
    QPainterPath area;  // odd and even, as a path is filled by itself
    for (size_t i = 0; i < loopCount(item); ++i) {
      const QPolygonF loop = clippedLoop(item, i);
      if (loop.size() > 2) area.addPolygon(loop);
    }
    if (!area.isEmpty()) painter_.fillPath(area, colorOf(item.color, item.alpha));
  }

  void operator()(const TextItem& item) {
    const double pixels = item.height / unit_;
    const double angle = std::atan2(item.direction.y, item.direction.x) + view_.twist;
    const QPointF at = device(item.position);
    if (!(pixels <= kLargestText) || !std::isfinite(at.x() + at.y())) return;
    const QColor color = colorOf(item.color, item.alpha);
    if (pixels < (style_.lineWidth == 0 ? kSmallestTextOnScreen : kSmallestText)) {
      const double length = pixels * 0.7 * item.text.size();
      gather(at, at + QPointF(std::cos(angle), -std::sin(angle)) * length, color.rgb());
      return;
    }
    flush();
    drawGlyphs(item, at, pixels, angle, color);
  }

  void operator()(const ImageItem& item) {
    flush();
    const double before = painter_.opacity();
    painter_.setOpacity(before * item.alpha / 255.0);
    paintImage(item);
    painter_.setOpacity(before);
  }

  /// In bands, so that a large plot needs little memory.
  void operator()(const PointsItem& item) {
    flush();
    const int band = std::max(1, kBandPixels / std::max(1, wanted_.width()));
    for (int top = wanted_.top(); top <= wanted_.bottom(); top += band) {
      const QRect part(wanted_.left(), top, wanted_.width(),
                       std::min(band, wanted_.bottom() - top + 1));
      const QImage pixels = paintPoints(item, view_, part);
      if (!pixels.isNull()) painter_.drawImage(part.topLeft(), pixels);
    }
  }

 private:
  static QRectF widened(const QRectF& box, double by) { return box.adjusted(-by, -by, by, by); }

  /// Pixels; below 0 the size is in parts of a hundred of the view's height.
  double markSize() const {
    constexpr double kUsual = -5;
    const double size = points_.size != 0 ? points_.size : kUsual;
    return std::min(size > 0 ? size * perUnit_ : -size / 100 * view_.pixelHeight, kFarAway);
  }
  /// How far a mark reaches from its point: crosses are twice as large as what is around them.
  double markReach() const { return points_.mode == 0 ? 0 : markSize(); }

  void drawMark(QPointF at, const QColor& color, double width) {
    constexpr int kCircle = 32;
    constexpr int kSquare = 64;
    flush();
    painter_.setPen(pen(color, width));
    const double size = markSize();
    const double half = size / 2;
    const int shape = points_.mode & 7;
    const auto line = [&](double x0, double y0, double x1, double y1) {
      painter_.drawLine(QLineF(at + QPointF(x0, y0), at + QPointF(x1, y1)));
    };
    if (shape == 0) painter_.drawPoint(at);
    if (shape == 2) {
      line(-size, 0, size, 0);
      line(0, -size, 0, size);
    } else if (shape == 3) {
      line(-size, -size, size, size);
      line(-size, size, size, -size);
    } else if (shape == 4) {
      line(0, 0, 0, -half);
    }
    painter_.setBrush(Qt::NoBrush);
    if ((points_.mode & kCircle) != 0) painter_.drawEllipse(at, half, half);
    if ((points_.mode & kSquare) != 0) {
      painter_.drawRect(QRectF(at.x() - half, at.y() - half, size, size));
    }
  }

  QColor colorOf(unsigned color, std::uint8_t alpha) const {
    QColor seen(colorOfIndex(color, style_.background));
    if (alpha < 255) seen.setAlpha(alpha);
    return seen;
  }

  /// Pixels; 0 for a line of one pixel.
  double widthOf(const LineItem& item) const {
    if (item.weight < 0) return style_.lineWidth;
    const double width = item.weight / 100.0 * style_.pixelsPerMillimetre;
    return style_.pixelsPerMillimetre == 0 || width < kFineLine ? style_.lineWidth : width;
  }

  void paintImage(const ImageItem& item) const {
    if (style_.placeImages) return placeImage(item);
    const BlitPlan plan = planBlit(item, view_);
    if (plan.mode == BlitMode::kNothing) return;
    if (plan.mode == BlitMode::kExact) {
      painter_.drawImage(plan.exactTarget, item.image);
      return;
    }
    QPoint target;
    const QImage pixels = resample(item.image, plan, wanted_, target);
    if (!pixels.isNull()) painter_.drawImage(target, pixels);
  }

  void drawDashes(const LineItem& item, const QColor& color, double width, bool isFine) {
    std::vector<QPointF> line;
    line.reserve(item.points.size());
    for (const GroundPoint& point : item.points) line.push_back(device(point));
    if (isFine) {
      return forEachDash(line, *item.dashes, perUnit_, clip_,
                         [&](QPointF a, QPointF b) { gather(a, b, color.rgb()); });
    }
    flush();
    painter_.setPen(pen(color, width));
    forEachDash(line, *item.dashes, perUnit_, clip_,
                [&](QPointF a, QPointF b) { painter_.drawLine(QLineF(a, b)); });
  }

  void drawRims(const AreaItem& item) {
    for (size_t i = 0; i < loopCount(item); ++i) {
      const auto [begin, end] = loopOf(item, i);
      LineItem rim{{item.points.begin() + begin, item.points.begin() + end}, item.color};
      rim.alpha = item.alpha;
      if (begin < end) rim.points.push_back(rim.points.front());
      if (!rim.points.empty()) (*this)(rim);
    }
  }

  QPolygonF clippedLoop(const AreaItem& item, size_t loop) const {
    const auto [begin, end] = loopOf(item, loop);
    QPolygonF polygon;
    for (std::ptrdiff_t i = begin; i < end; ++i)
      polygon << device(item.points[static_cast<size_t>(i)]);
    polygon = clipSide(polygon, true, clip_.left(), true);
    polygon = clipSide(polygon, true, clip_.right(), false);
    polygon = clipSide(polygon, false, clip_.top(), true);
    return clipSide(polygon, false, clip_.bottom(), false);
  }

  /// The device pixels that are painted at all.
  static QRect wantedPixels(const QPainter& painter, const ViewState& view) {
    const QRect whole(0, 0, view.pixelWidth, view.pixelHeight);
    return painter.hasClipping() ? whole & painter.clipBoundingRect().toAlignedRect() : whole;
  }

  static bool meets(const GroundBox& a, const GroundBox& b) {
    return a.minX <= b.maxX && a.maxX >= b.minX && a.minY <= b.maxY && a.maxY >= b.minY;
  }

  GroundBox groundOf(const QRectF& pixels) const {
    GroundBox box;
    for (const QPointF& p :
         {pixels.topLeft(), pixels.topRight(), pixels.bottomLeft(), pixels.bottomRight()}) {
      const GroundPoint ground = groundFromPixel(view_, {p.x(), p.y()});
      box.add(ground.x, ground.y);
    }
    return box;
  }

  /// As pixelFromGround, which computes the sine anew for each point.
  QPointF device(const GroundPoint& ground) const {
    const double x = ground.x - view_.centerX;
    const double y = ground.y - view_.centerY;
    return {view_.pixelWidth / 2.0 + (x * cosine_ - y * sine_) * perUnit_,
            view_.pixelHeight / 2.0 - (x * sine_ + y * cosine_) * perUnit_};
  }

  /// Segments of one colour are painted together. A fine line, a circle far away say, is walked in
  /// strides that stay below the smallest step.
  void gather(const LineItem& item, QRgb color) {
    const size_t last = item.points.size() - 1;
    const double steps = kSmallestStep * unit_ / (2 * item.longestStep);
    const size_t stride = steps >= 2 ? static_cast<size_t>(std::min(steps, 1e6)) : 1;
    QPointF from = device(item.points.front());
    for (size_t i = 0; i < last;) {
      i = std::min(i + stride, last);
      const QPointF to = device(item.points[i]);
      const QPointF step = to - from;
      if (i < last && std::fabs(step.x()) < kSmallestStep && std::fabs(step.y()) < kSmallestStep) {
        continue;
      }
      gather(from, to, color);
      from = to;
    }
  }

  void gather(QPointF a, QPointF b, QRgb color) {
    if (pixelLines_) {
      if ((isInside(a) && isInside(b)) || isNear(a, b)) pixelLines_->draw(a, b, color);
      return;
    }
    if (color != linesColor_ || lines_.size() > kMostLines) flush();
    linesColor_ = color;
    if ((isInside(a) && isInside(b)) || clipSegment(clip_, a, b)) lines_.append(QLineF(a, b));
  }

  /// Part of the segment may be seen; its ends are brought near enough to be painted.
  bool isNear(QPointF& a, QPointF& b) const {
    if (std::max(a.x(), b.x()) < left_ || std::min(a.x(), b.x()) > right_ ||
        std::max(a.y(), b.y()) < top_ || std::min(a.y(), b.y()) > bottom_) {
      return false;
    }
    const auto isFar = [&](QPointF p) {
      return !(std::fabs(p.x()) < kFarAway && std::fabs(p.y()) < kFarAway);
    };
    return (!isFar(a) && !isFar(b)) || clipSegment(clip_, a, b);
  }

  bool isInside(QPointF p) const {
    return p.x() >= left_ && p.x() <= right_ && p.y() >= top_ && p.y() <= bottom_;
  }

  void flush() {
    if (lines_.isEmpty()) return;
    painter_.setPen(pen(QColor(linesColor_), style_.lineWidth));
    painter_.drawLines(lines_);
    lines_.resize(0);
  }

  static QPen pen(const QColor& color, double width) {
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
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
    QTransform place;
    place.translate(at.x(), at.y());
    place.rotateRadians(-angle);
    if (item.mirrored) place.scale(1, -1);
    place.shear(-std::tan(item.oblique), 0);
    place.scale(pixels * item.widthFactor, pixels);
    const TextOutline& outline = textOutline(item.font, style_.fontFamilies, item.text);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.fillPath(place.map(outline.path), color);
    painter_.setRenderHint(QPainter::Antialiasing, false);
    painter_.setPen(pen(color, style_.lineWidth));
    const auto rule = [&](double y) {
      painter_.drawLine(QLineF(place.map(QPointF(0, y)), place.map(QPointF(outline.width, y))));
    };
    if (item.underlined) rule(kUnderline);
    if (item.overlined) rule(kOverline);
  }

  QPainter& painter_;
  const ViewState& view_;
  const RenderStyle& style_;
  const PointLook& points_;
  double cosine_, sine_, unit_, perUnit_;
  QRect wanted_;
  QRectF clip_;
  double left_, top_, right_, bottom_;  ///< of clip_
  GroundBox shown_;
  std::optional<PixelLines> pixelLines_;
  QVector<QLineF> lines_;
  QRgb linesColor_ = 0;
};

}  // namespace

void paintScene(QPainter& painter, const Scene& scene, const ViewState& view,
                const RenderStyle& style) {
  Painter paint(painter, view, style, scene.pointLook());
  for (const Drawn* drawn : scene.drawn()) paint.paint(*drawn);
}

void render(QPainter& painter, const Scene& scene, const ViewState& view,
            const RenderStyle& style) {
  painter.save();
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
  painter.setClipRect(0, 0, view.pixelWidth, view.pixelHeight, Qt::IntersectClip);
  painter.fillRect(0, 0, view.pixelWidth, view.pixelHeight, QColor(style.background));
  paintScene(painter, scene, view, style);
  painter.restore();
}

}  // namespace tarn::host
