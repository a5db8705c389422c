#include "host/window/entityoverlay.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/picking.h"
#include "host/editor/sysvars.h"
#include "host/window/snapkinds.h"

namespace tarn::host {

namespace {

constexpr int kGripHalf = 4;  ///< pixels
constexpr int kSnapHalf = 6;
constexpr int kMostGrips = 2000;  ///< more would only cover the drawing
const QColor kHighlight(0x3d, 0x9d, 0xff);
const QColor kGrip(0x00, 0x7f, 0xff);
const QColor kHotGrip(0xff, 0x30, 0x30);
const QColor kSnap(0xff, 0xd8, 0x30);
const QColor kSnapOnLight(0xb0, 0x60, 0x00);

QPointF device(const ViewState& view, GroundPoint ground) {
  const PixelPoint pixel = pixelFromGround(view, ground);
  return {pixel.x, pixel.y};
}

bool isInView(const ViewState& view, QPointF at) {
  return at.x() >= -kGripHalf && at.y() >= -kGripHalf && at.x() <= view.pixelWidth + kGripHalf &&
         at.y() <= view.pixelHeight + kGripHalf;
}

void paintHighlight(QPainter& painter, HostDocument& document, const EntityIds& ids, double ratio) {
  painter.setPen(QPen(kHighlight, 2 * ratio, Qt::DashLine));
  painter.setBrush(Qt::NoBrush);
  // A line far outside would be walked dash by dash.
  const ViewState screen = document.view();
  const QRectF shown =
      QRectF(0, 0, screen.pixelWidth, screen.pixelHeight).adjusted(-4000, -4000, 4000, 4000);
  for (const AcDbObjectId& id : ids) {
    for (const Outline& outline : highlightOf(document, id)) {
      QPolygonF line;
      for (const PixelPoint& p : outline.points) {
        line << QPointF(std::clamp(p.x, shown.left(), shown.right()),
                        std::clamp(p.y, shown.top(), shown.bottom()));
      }
      painter.drawPolyline(line);
    }
  }
}

std::vector<GroundPoint> gripsOf(HostApp& app) {
  std::vector<GroundPoint> all;
  for (const AcDbObjectId& id : app.documents().current().selection().pickFirst) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) continue;
    AcGePoint3dArray grips;
    AcDbIntArray modes;
    AcDbIntArray ids;
    entity->getGripPoints(grips, modes, ids);
    for (const AcGePoint3d& grip : grips) all.push_back({grip.x, grip.y});
    if (all.size() > kMostGrips) break;
  }
  return all;
}

void paintGrips(QPainter& painter, HostApp& app, const PointerState& pointer) {
  const std::optional<GroundPoint>& hot = pointer.hotGrip;
  const double half = kGripHalf * pointer.ratio;
  const ViewState view = app.documents().current().space().mouseView();
  painter.setPen(QPen(Qt::black, pointer.ratio));
  for (const GroundPoint& grip : gripsOf(app)) {
    const QPointF at = device(view, grip);
    if (!isInView(view, at)) continue;
    const bool isHot = hot && hot->x == grip.x && hot->y == grip.y;
    painter.setBrush(isHot ? kHotGrip : kGrip);
    painter.drawRect(QRectF(at.x() - half, at.y() - half, 2 * half, 2 * half));
  }
}

/// Blue for a window, green and dashed for what it touches.
void paintWindow(QPainter& painter, const ViewState& view, GroundPoint corner, GroundPoint cursor,
                 double ratio) {
  const QRectF box = QRectF(device(view, corner), device(view, cursor));
  const bool crossing = box.width() < 0;
  const QColor color = crossing ? QColor(0x40, 0xc0, 0x60) : QColor(0x40, 0x80, 0xff);
  painter.setPen(QPen(color, ratio, crossing ? Qt::DashLine : Qt::SolidLine));
  painter.setBrush(QColor(color.red(), color.green(), color.blue(), 50));
  painter.drawRect(box.normalized());
}

/// Dashes on a line of the other brightness: seen on every photo.
void paintRubber(QPainter& painter, const ViewState& view, GroundPoint base, GroundPoint cursor,
                 const PointerState& pointer) {
  const QColor dark(0, 0, 0, 190);
  const QColor light(255, 255, 255, 230);
  const QLineF line(device(view, base), device(view, cursor));
  painter.setPen(QPen(pointer.lightGround ? light : dark, 1.5 * pointer.ratio));
  painter.drawLine(line);
  painter.setPen(QPen(pointer.lightGround ? dark : light, 1.5 * pointer.ratio, Qt::DashLine));
  painter.drawLine(line);
}

/// Each kind of point has a mark of its own.
void paintMark(QPainter& painter, int bit, QPointF at, const QRectF& box) {
  switch (bit) {
    case kSnapMid:
      painter.drawPolygon(QPolygonF({{at.x(), box.top()}, box.bottomRight(), box.bottomLeft()}));
      break;
    case kSnapCenter:
      painter.drawEllipse(box);
      break;
    case kSnapNode:
      painter.drawEllipse(box);
      [[fallthrough]];
    case kSnapIntersection:
      painter.drawLine(box.topLeft(), box.bottomRight());
      painter.drawLine(box.topRight(), box.bottomLeft());
      break;
    case kSnapQuadrant:
      painter.drawPolygon(QPolygonF({{at.x(), box.top()},
                                     {box.right(), at.y()},
                                     {at.x(), box.bottom()},
                                     {box.left(), at.y()}}));
      break;
    case kSnapNearest:
      painter.drawPolygon(
          QPolygonF({box.topLeft(), box.topRight(), box.bottomLeft(), box.bottomRight()}));
      break;
    default:
      painter.drawRect(box);
  }
}

/// The kind's name on a small plate beside the mark.
void paintTip(QPainter& painter, const QString& text, QPointF at, const PointerState& pointer,
              const ViewState& view) {
  constexpr int kLetters = 12;
  constexpr int kAway = 14;
  constexpr int kInset = 4;
  QFont font = painter.font();
  font.setPixelSize(qRound(kLetters * pointer.ratio));
  painter.setFont(font);
  const QFontMetricsF metrics(font);
  QRectF plate(QPointF(0, 0), QSizeF(metrics.horizontalAdvance(text), metrics.height()));
  plate.adjust(0, 0, 2 * kInset * pointer.ratio, kInset * pointer.ratio);
  const double away = kAway * pointer.ratio;
  plate.moveTo(at.x() + away, at.y() + away);
  if (plate.right() > view.pixelWidth) plate.moveRight(at.x() - away);
  if (plate.bottom() > view.pixelHeight) plate.moveBottom(at.y() - away);
  painter.fillRect(plate, QColor(0x1d, 0x21, 0x27, 225));
  painter.setPen(kSnap);
  painter.drawText(plate, Qt::AlignCenter, text);
}

void paintSnap(QPainter& painter, HostApp& app, const Snap& snap, const PointerState& pointer) {
  const ViewState view = app.documents().current().space().mouseView();
  const QPointF at = device(view, {snap.point.x, snap.point.y});
  const double half = kSnapHalf * pointer.ratio;
  const QColor color = pointer.lightGround ? kSnapOnLight : kSnap;
  painter.setPen(QPen(color, 2 * pointer.ratio, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.setBrush(Qt::NoBrush);
  paintMark(painter, snap.bit, at, QRectF(at.x() - half, at.y() - half, 2 * half, 2 * half));
  for (const SnapKind& kind : kSnapKinds) {
    if (kind.bit == snap.bit) paintTip(painter, words(kind.name), at, pointer, view);
  }
}

/// Straight beside or above the point, whichever is nearer.
GroundPoint straight(GroundPoint from, GroundPoint to) {
  return std::abs(to.x - from.x) >= std::abs(to.y - from.y) ? GroundPoint{to.x, from.y}
                                                            : GroundPoint{from.x, to.y};
}

}  // namespace

AimedPoint aimedAt(HostApp& app, GroundPoint cursor) {
  const SelectionMemory& selection = app.documents().current().selection();
  const int named = selection.namedSnaps;
  const int bits = named != 0 ? named : runningSnaps(app);
  AimedPoint aimed{cursor, {}};
  if (bits != 0) aimed.snap = findSnap(app, bits, cursor, named == 0);
  if (aimed.snap) {
    aimed.point = {aimed.snap->point.x, aimed.snap->point.y};
  } else if (selection.rubberBase && app.variables().shortOf("ORTHOMODE") != 0) {
    aimed.point = straight(*selection.rubberBase, cursor);
  }
  return aimed;
}

void paintOverlay(QPainter& painter, HostApp& app, const PointerState& pointer) {
  HostDocument& document = app.documents().current();
  const SelectionMemory& selection = document.selection();
  paintHighlight(painter, document, selection.pickFirst, pointer.ratio);
  paintHighlight(painter, document, selection.choosing, pointer.ratio);
  paintGrips(painter, app, pointer);
  if (!pointer.cursor) return;
  const auto corner = pointer.windowCorner ? pointer.windowCorner : selection.windowCorner;
  const ViewState view = document.space().mouseView();
  if (corner) paintWindow(painter, view, *corner, *pointer.cursor, pointer.ratio);
  AimedPoint aimed{*pointer.cursor, {}};
  if (pointer.snaps) aimed = aimedAt(app, *pointer.cursor);
  if (selection.rubberBase) {
    paintRubber(painter, view, *selection.rubberBase, aimed.point, pointer);
  }
  if (aimed.snap) paintSnap(painter, app, *aimed.snap, pointer);
}

std::optional<GroundPoint> gripAt(HostApp& app, GroundPoint place) {
  const double reach = app.variables().shortOf("PICKBOX") *
                       app.documents().current().space().mouseView().unitsPerPixel();
  for (const GroundPoint& grip : gripsOf(app)) {
    if (std::hypot(grip.x - place.x, grip.y - place.y) <= reach) return grip;
  }
  return std::nullopt;
}

}  // namespace tarn::host
