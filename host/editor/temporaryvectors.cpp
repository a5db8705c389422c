#include "host/editor/temporaryvectors.h"

#include <QLineF>
#include <QPainter>
#include <QPen>
#include <QVector>
#include <map>
#include <utility>

#include "host/graphics/color.h"

namespace tarn::host {

namespace {

constexpr double kLineWidth = 1.5;  ///< device pixels
constexpr double kRimWidth = 3.5;
constexpr int kRimOpacity = 150;
constexpr QRgb kGround = 0xff212830;
/// Pixels outside the view within which a line is still painted as it is.
constexpr double kFarOut = 20000;

bool isPaintable(const QPointF& point, const ViewState& view) {
  return point.x() > -kFarOut && point.y() > -kFarOut && point.x() < view.pixelWidth + kFarOut &&
         point.y() < view.pixelHeight + kFarOut;
}

QPointF device(const ViewState& view, GroundPoint ground) {
  const PixelPoint pixel = pixelFromGround(view, ground);
  return {pixel.x, pixel.y};
}

}  // namespace

void paintTemporaryVectors(QPainter& painter, const TemporaryVectors& vectors,
                           const ViewState& view) {
  std::map<std::pair<unsigned, bool>, QVector<QLineF>> byColor;
  QVector<QLineF> all;
  for (const TemporaryVectors::Line& line : vectors.lines) {
    const QLineF shown(device(view, line.from), device(view, line.to));
    if (!isPaintable(shown.p1(), view) || !isPaintable(shown.p2(), view)) continue;
    byColor[{line.color, line.highlighted}].append(shown);
    all.append(shown);
  }
  if (all.isEmpty()) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(0, 0, 0, kRimOpacity), kRimWidth, Qt::SolidLine, Qt::RoundCap));
  painter.drawLines(all);
  for (const auto& [key, lines] : byColor) {
    painter.setPen(QPen(QColor(colorOfIndex(key.first, kGround)), kLineWidth,
                        key.second ? Qt::DashLine : Qt::SolidLine, Qt::RoundCap));
    painter.drawLines(lines);
  }
  painter.restore();
}

}  // namespace tarn::host
