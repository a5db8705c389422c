#include "commoncode/fitreport/residualplot.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tarn::fitreport {
namespace {

const QColor kArrow(190, 40, 30);
const QColor kPoint(20, 70, 140);
const QColor kFaint(150, 150, 150);

struct Extent {
  double left = 0, bottom = 0, right = 0, top = 0;
};

bool isFinite(const ReportRow& row) {
  return std::isfinite(row.targetEast) && std::isfinite(row.targetNorth) &&
         std::isfinite(row.residualEast) && std::isfinite(row.residualNorth);
}

Extent boxOf(const std::vector<ReportRow>& rows) {
  Extent box{HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  for (const ReportRow& row : rows) {
    if (!isFinite(row)) continue;
    box.left = std::min(box.left, row.targetEast);
    box.right = std::max(box.right, row.targetEast);
    box.bottom = std::min(box.bottom, row.targetNorth);
    box.top = std::max(box.top, row.targetNorth);
  }
  return box.left <= box.right ? box : Extent();
}

/// Draws with sizes in tenths of the text's height, so that screens and paper look alike.
class Pen {
 public:
  explicit Pen(QPainter& painter)
      : painter_(painter), unit_(QFontMetricsF(painter.font(), painter.device()).height() / 10) {}

  double unit() const { return unit_; }
  void set(const QColor& color, double width) {
    painter_.setPen(QPen(color, width * unit_, Qt::SolidLine, Qt::RoundCap));
  }
  void line(QPointF from, QPointF to) { painter_.drawLine(from, to); }
  void arrow(QPointF from, QPointF to) {
    painter_.drawLine(from, to);
    const QPointF along = to - from;
    const double length = std::hypot(along.x(), along.y());
    if (!(length > 0)) return;
    const QPointF u = along / length;
    const double head = std::min(5 * unit_, length / 2);
    const QPointF back = to - u * head, side(-u.y() * head / 2.5, u.x() * head / 2.5);
    painter_.drawLine(to, back + side);
    painter_.drawLine(to, back - side);
  }
  void point(QPointF at, bool isCheck) {
    const double r = 2.2 * unit_;
    const QRectF box(at.x() - r, at.y() - r, 2 * r, 2 * r);
    if (isCheck) {
      painter_.drawRect(box);
    } else {
      painter_.drawEllipse(box);
    }
  }
  void text(QPointF at, const QString& text) { painter_.drawText(at, text); }

 private:
  QPainter& painter_;
  double unit_;
};

QString shortNumber(double value) {
  return QString::number(value, 'g', 6);
}

QString words(const FitReport& report, const char* chinese, const char* english) {
  return QString::fromUtf8(report.language == Language::kChinese ? chinese : english);
}

/// A line of a round length in ground units with its text; returns where the next may begin.
double paintScale(Pen& pen, QPointF at, double perUnit, double widest, const QString& name,
                  const QString& unit, const QColor& color, bool isArrow) {
  const double round = roundBelow(widest / perUnit);
  if (round == 0) return at.x();
  pen.set(color, 0.9);
  const QPointF end = at + QPointF(round * perUnit, 0);
  const double tick = 2 * pen.unit();
  if (isArrow) {
    pen.arrow(at, end);
  } else {
    pen.line(at, end);
    for (const QPointF& p : {at, end}) pen.line(p - QPointF(0, tick), p + QPointF(0, tick));
  }
  pen.set(Qt::black, 0.6);
  pen.text(end + QPointF(6 * pen.unit(), 3.5 * pen.unit()),
           name + " " + shortNumber(round) + (unit.isEmpty() ? QString() : " " + unit));
  return end.x();
}

}  // namespace

double roundBelow(double value) {
  if (!(value > 0) || !std::isfinite(value)) return 0;
  const double power = std::pow(10, std::floor(std::log10(value)));
  const double part = value / power;
  return (part >= 5 ? 5 : part >= 2 ? 2 : 1) * power;
}

double longestResidual(const std::vector<ReportRow>& rows) {
  double longest = 0;
  for (const ReportRow& row : rows)
    if (isFinite(row)) longest = std::max(longest, row.length());
  return longest;
}

double extentOf(const std::vector<ReportRow>& rows) {
  const Extent box = boxOf(rows);
  return std::max(box.right - box.left, box.top - box.bottom);
}

double exaggerationFor(const std::vector<ReportRow>& rows) {
  constexpr double kMost = 0.2;
  const double longest = longestResidual(rows);
  // Points that are spread evenly lie so far apart.
  const double part = std::min(kMost, 1 / std::sqrt(std::max<double>(1, rows.size())));
  const double round = longest > 0 ? roundBelow(part * extentOf(rows) / longest) : 0;
  return round > 0 ? round : 1;
}

void paintPlot(QPainter& painter, const QRectF& box, const FitReport& report) {
  painter.save();
  Pen pen(painter);
  pen.set(kFaint, 0.5);
  painter.drawRect(box);
  const double around = 22 * pen.unit(), below = 18 * pen.unit();
  const QRectF inner = box.adjusted(around, around, -around, -around - below);
  const Extent extent = boxOf(report.rows);
  const double width = std::max(extent.right - extent.left, 1e-9);
  const double height = std::max(extent.top - extent.bottom, 1e-9);
  const double scale = std::min(inner.width() / width, inner.height() / height);
  const double middleX = (extent.left + extent.right) / 2,
               middleY = (extent.bottom + extent.top) / 2;
  const auto place = [&](double east, double north) {
    return inner.center() + QPointF((east - middleX) * scale, (middleY - north) * scale);
  };
  const double factor = exaggerationFor(report.rows);
  for (const ReportRow& row : report.rows) {
    if (!isFinite(row)) continue;
    const QPointF at = place(row.targetEast, row.targetNorth);
    pen.set(kPoint, 0.8);
    pen.point(at, row.isCheck);
    pen.set(kArrow, 0.9);
    pen.arrow(at, at + QPointF(row.residualEast, -row.residualNorth) * scale * factor);
    pen.set(Qt::black, 0.6);
    pen.text(at + QPointF(3 * pen.unit(), -3 * pen.unit()), QString::number(row.number));
  }
  const double bottom = box.bottom() - 9 * pen.unit();
  QPointF at(box.left() + 8 * pen.unit(), bottom);
  paintScale(pen, at, scale * factor, box.width() / 8, words(report, "误差", "Residual"),
             report.targetUnit, kArrow, true);
  at.setX(box.left() + box.width() * 0.4);
  paintScale(pen, at, scale, box.width() / 8, words(report, "图面", "Ground"), report.targetUnit,
             kPoint, false);
  pen.text(QPointF(box.left() + box.width() * 0.75, bottom + 3.5 * pen.unit()),
           words(report, "误差放大 %1 倍", "Residuals × %1").arg(shortNumber(factor)));
  painter.restore();
}

}  // namespace tarn::fitreport
