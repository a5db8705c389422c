#include "host/window/entityoverlay.h"

#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <cmath>

#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/hostapp.h"
#include "host/editor/objectsnap.h"
#include "host/editor/picking.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

constexpr int kGripHalf = 4;  ///< pixels
constexpr int kSnapHalf = 6;
constexpr int kMostGrips = 2000;  ///< more would only cover the drawing
const QColor kHighlight(0x3d, 0x9d, 0xff);
const QColor kGrip(0x00, 0x7f, 0xff);
const QColor kHotGrip(0xff, 0x30, 0x30);
const QColor kSnap(0xff, 0xd8, 0x30);

QPointF device(const ViewState& view, GroundPoint ground) {
  const PixelPoint pixel = pixelFromGround(view, ground);
  return {pixel.x, pixel.y};
}

bool isInView(const ViewState& view, QPointF at) {
  return at.x() >= -kGripHalf && at.y() >= -kGripHalf && at.x() <= view.pixelWidth + kGripHalf &&
         at.y() <= view.pixelHeight + kGripHalf;
}

void paintHighlight(QPainter& painter, HostDocument& document, const EntityIds& ids) {
  painter.setPen(QPen(kHighlight, 2, Qt::DashLine));
  painter.setBrush(Qt::NoBrush);
  // A line far outside would be walked dash by dash.
  const ViewState screen = document.view();
  const QRectF shown =
      QRectF(0, 0, screen.pixelWidth, screen.pixelHeight).adjusted(-4000, -4000, 4000, 4000);
  for (const AcDbObjectId& id : ids) {
    for (const Outline& outline : outlinesOf(document, id)) {
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

void paintGrips(QPainter& painter, HostApp& app, const std::optional<GroundPoint>& hot) {
  const ViewState view = app.documents().current().space().mouseView();
  painter.setPen(QPen(Qt::black, 1));
  for (const GroundPoint& grip : gripsOf(app)) {
    const QPointF at = device(view, grip);
    if (!isInView(view, at)) continue;
    const bool isHot = hot && hot->x == grip.x && hot->y == grip.y;
    painter.setBrush(isHot ? kHotGrip : kGrip);
    painter.drawRect(QRectF(at.x() - kGripHalf, at.y() - kGripHalf, 2 * kGripHalf, 2 * kGripHalf));
  }
}

/// Blue for a window, green and dashed for what it touches.
void paintWindow(QPainter& painter, const ViewState& view, GroundPoint corner, GroundPoint cursor) {
  const QRectF box = QRectF(device(view, corner), device(view, cursor));
  const bool crossing = box.width() < 0;
  const QColor color = crossing ? QColor(0x40, 0xc0, 0x60) : QColor(0x40, 0x80, 0xff);
  painter.setPen(QPen(color, 1, crossing ? Qt::DashLine : Qt::SolidLine));
  painter.setBrush(QColor(color.red(), color.green(), color.blue(), 50));
  painter.drawRect(box.normalized());
}

void paintRubber(QPainter& painter, const ViewState& view, GroundPoint base, GroundPoint cursor) {
  painter.setPen(QPen(QColor(0xff, 0xff, 0xff, 160), 1, Qt::DashLine));
  painter.drawLine(device(view, base), device(view, cursor));
}

void paintSnap(QPainter& painter, HostApp& app, GroundPoint cursor) {
  const int named = app.documents().current().selection().namedSnaps;
  const int bits = named != 0 ? named : runningSnaps(app);
  const auto snap = bits != 0 ? findSnap(app, bits, cursor, named == 0) : std::nullopt;
  if (!snap) return;
  const ViewState view = app.documents().current().space().mouseView();
  const QPointF at = device(view, {snap->point.x, snap->point.y});
  painter.setPen(QPen(kSnap, 2));
  painter.setBrush(Qt::NoBrush);
  const QRectF box(at.x() - kSnapHalf, at.y() - kSnapHalf, 2 * kSnapHalf, 2 * kSnapHalf);
  switch (snap->bit) {
    case kSnapMid:
      painter.drawPolygon(QPolygonF({{at.x(), box.top()}, box.bottomRight(), box.bottomLeft()}));
      break;
    case kSnapCenter:
      painter.drawEllipse(box);
      break;
    case kSnapIntersection:
    case kSnapNearest:
      painter.drawLine(box.topLeft(), box.bottomRight());
      painter.drawLine(box.topRight(), box.bottomLeft());
      break;
    default:
      painter.drawRect(box);
  }
}

}  // namespace

void paintOverlay(QPainter& painter, HostApp& app, const PointerState& pointer) {
  HostDocument& document = app.documents().current();
  const SelectionMemory& selection = document.selection();
  paintHighlight(painter, document, selection.pickFirst);
  paintHighlight(painter, document, selection.choosing);
  paintGrips(painter, app, pointer.hotGrip);
  if (!pointer.cursor) return;
  const auto corner = pointer.windowCorner ? pointer.windowCorner : selection.windowCorner;
  const ViewState view = document.space().mouseView();
  if (corner) paintWindow(painter, view, *corner, *pointer.cursor);
  if (selection.rubberBase) {
    paintRubber(painter, view, *selection.rubberBase, *pointer.cursor);
  }
  if (pointer.snaps) paintSnap(painter, app, *pointer.cursor);
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
