// Commands that only tell something.
#include <cmath>

#include "acedads.h"
#include "acutmem.h"
#include "base/text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

namespace {

constexpr double kDegree = 3.141592653589793 / 180;

HostApp& app() {
  return *HostApp::instance();
}

std::string textOf(const AcGePoint3d& p) {
  return formatPoint(p.x, p.y) + "," + formatDouble(p.z);
}

void listEntity(const AcDbEntity& entity) {
  const ACHAR* kind = entity.isA()->dxfName();
  ACHAR* layer = entity.layer();
  ACHAR handle[20] = {0};
  entity.handle().getIntoAsciiBuffer(handle, 20);
  std::string text =
      "\n" + toUtf8(kind != nullptr ? kind : entity.isA()->name()) + "  layer \"" + toUtf8(layer) +
      "\"  handle " + toUtf8(handle) + "  colour " +
      (entity.colorIndex() == 256 ? std::string("by layer") : std::to_string(entity.colorIndex()));
  acutDelString(layer);
  if (const auto* line = AcDbLine::cast(&entity)) {
    text += "\n  from " + textOf(line->startPoint()) + " to " + textOf(line->endPoint()) +
            ", length " + formatDouble(line->startPoint().distanceTo(line->endPoint()));
  }
  AcDbExtents box;
  if (entity.getGeomExtents(box) == Acad::eOk) {
    text += "\n  extents " + textOf(box.minPoint()) + " to " + textOf(box.maxPoint());
  }
  app().print(text + "\n");
}

}  // namespace

void idCommand() {
  ads_point point = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nPoint: "), point) != RTNORM) return;
  app().print("\nX = " + formatDouble(point[0]) + "  Y = " + formatDouble(point[1]) +
              "  Z = " + formatDouble(point[2]) + "\n");
}

void distCommand() {
  ads_point from = {0, 0, 0};
  ads_point to = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nFirst point: "), from) != RTNORM) return;
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(from, ACRX_T("\nSecond point: "), to) != RTNORM) return;
  const double dx = to[0] - from[0];
  const double dy = to[1] - from[1];
  const double dz = to[2] - from[2];
  double degrees = std::atan2(dy, dx) / kDegree;
  if (degrees < 0) degrees += 360;
  app().print("\nDistance = " + formatDouble(std::sqrt(dx * dx + dy * dy + dz * dz)) +
              "  angle = " + formatDouble(degrees) + "\nDelta X = " + formatDouble(dx) +
              "  Delta Y = " + formatDouble(dy) + "  Delta Z = " + formatDouble(dz) + "\n");
}

void listCommand() {
  EntityIds ids;
  if (!selectForCommand(ids)) return;
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk) listEntity(*entity.object());
  }
}

}  // namespace tarn::host
