// Commands that draw.
#include "acedads.h"
#include "base/text.h"
#include "dbents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/picking.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

AcGePoint3d pointOf(const ads_point point) {
  return {point[0], point[1], point[2]};
}

/// The keyword given instead of a value.
std::string keyword() {
  ACHAR word[513] = {0};
  acedGetInput(word);
  return toUtf8(word);
}

bool eraseEntity(AcDbObjectId id) {
  AcDbEntity* entity = nullptr;
  if (acdbOpenObject(entity, id, AcDb::kForWrite) != Acad::eOk) return false;
  const bool done = entity->erase() == Acad::eOk;
  entity->close();
  return done;
}

/// The segments of one LINE command.
struct Segments {
  std::vector<AcGePoint3d> points;
  EntityIds lines;

  bool addTo(const AcGePoint3d& point) {
    auto* line = new AcDbLine(points.back(), point);
    if (!appendEntity(app(), line)) return false;
    lines.push_back(line->objectId());
    points.push_back(point);
    return true;
  }
  void takeBack() {
    if (lines.empty() || !eraseEntity(lines.back())) {
      app().print("\nThere is no line to take back.\n");
      return;
    }
    lines.pop_back();
    points.pop_back();
  }
};

}  // namespace

void lineCommand() {
  ads_point at = {0, 0, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nFirst point: "), at) != RTNORM) return;
  Segments made;
  made.points.push_back(pointOf(at));
  for (;;) {
    const bool closable = made.lines.size() > 1;
    acedInitGet(0, closable ? ACRX_T("Close Undo") : ACRX_T("Undo"));
    const int answer = acedGetPoint(
        asDblArray(made.points.back()),
        closable ? ACRX_T("\nNext point or [Close/Undo]: ") : ACRX_T("\nNext point or [Undo]: "),
        at);
    if (answer == RTKWORD && keyword() == "Close") {
      made.addTo(made.points.front());
      return;
    }
    if (answer == RTKWORD) {
      made.takeBack();
    } else if (answer != RTNORM || !made.addTo(pointOf(at))) {
      return;
    }
  }
}

}  // namespace tarn::host
