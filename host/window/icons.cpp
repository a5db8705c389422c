#include "host/window/icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QTransform>

namespace tarn::host {

namespace {

constexpr int kGrid = 24;  ///< the shapes below stand on a grid of this many units

QPainterPath lines(std::initializer_list<std::initializer_list<QPointF>> strokes) {
  QPainterPath path;
  for (const auto& stroke : strokes) {
    bool first = true;
    for (const QPointF& point : stroke) {
      first ? path.moveTo(point) : path.lineTo(point);
      first = false;
    }
  }
  return path;
}

QPainterPath turnedArrow() {
  QPainterPath path = lines({{{9, 5}, {4, 10}, {9, 15}}});
  path.moveTo(4, 10);
  path.lineTo(14, 10);
  path.arcTo(9, 10, 10, 9, 90, -180);
  path.lineTo(9, 19);
  return path;
}

QPainterPath shapeOf(IconKind kind) {
  QPainterPath path;
  switch (kind) {
    case IconKind::kOpen:
      path.addPath(lines({{{3, 19}, {3, 5}, {9, 5}, {11, 8}, {19, 8}, {19, 11}},
                          {{3, 19}, {7, 11}, {22, 11}, {18, 19}, {3, 19}}}));
      break;
    case IconKind::kSave:
      path.addPath(lines({{{4, 4}, {17, 4}, {20, 7}, {20, 20}, {4, 20}, {4, 4}},
                          {{8, 4}, {8, 9}, {15, 9}, {15, 4}},
                          {{7, 20}, {7, 13}, {17, 13}, {17, 20}}}));
      break;
    case IconKind::kUndo:
      path.addPath(turnedArrow());
      break;
    case IconKind::kRedo:
      path.addPath(QTransform(-1, 0, 0, 1, kGrid, 0).map(turnedArrow()));
      break;
    case IconKind::kZoomWindow:
      path.addEllipse(QPointF(10, 10), 6, 6);
      path.addPath(lines(
          {{{14.5, 14.5}, {21, 21}}, {{7.5, 8}, {12.5, 8}, {12.5, 12}, {7.5, 12}, {7.5, 8}}}));
      break;
    case IconKind::kPan:
      path.addPath(lines({{{12, 2}, {12, 22}},
                          {{2, 12}, {22, 12}},
                          {{9, 5}, {12, 2}, {15, 5}},
                          {{9, 19}, {12, 22}, {15, 19}},
                          {{5, 9}, {2, 12}, {5, 15}},
                          {{19, 9}, {22, 12}, {19, 15}}}));
      break;
    case IconKind::kAddImages:
      path.addRect(3, 6, 13, 12);
      path.addPath(lines({{{3, 15}, {7, 11}, {11, 15}, {13, 13}, {16, 16}},
                          {{17, 4}, {23, 4}},
                          {{20, 1}, {20, 7}}}));
      break;
    case IconKind::kSavePicture:
      path.addPath(lines({{{12, 3}, {12, 15}},
                          {{7, 10}, {12, 15}, {17, 10}},
                          {{4, 16}, {4, 20}, {20, 20}, {20, 16}}}));
      break;
    case IconKind::kZoomExtents:
      path.addRect(9, 9, 6, 6);
      path.addPath(lines({{{3, 8}, {3, 3}, {8, 3}},
                          {{16, 3}, {21, 3}, {21, 8}},
                          {{21, 16}, {21, 21}, {16, 21}},
                          {{8, 21}, {3, 21}, {3, 16}}}));
      break;
    case IconKind::kZoomPrevious:
      path.addEllipse(QPointF(10, 10), 6, 6);
      path.addPath(
          lines({{{14.5, 14.5}, {21, 21}}, {{10, 7}, {7, 10}, {10, 13}}, {{7, 10}, {13, 10}}}));
      break;
    case IconKind::kRegenerate:
      path.arcMoveTo(4, 4, 16, 16, 60);
      path.arcTo(4, 4, 16, 16, 60, 290);
      path.addPath(lines({{{16, 2}, {16, 6}, {20, 6}}}));
      break;
  }
  return path;
}

}  // namespace

QIcon makeIcon(IconKind kind, const QColor& color) {
  QIcon icon;
  for (const int side : {kGrid, 2 * kGrid, 3 * kGrid}) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / static_cast<double>(kGrid), side / static_cast<double>(kGrid));
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(shapeOf(kind));
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace tarn::host
