// Commands that draw.
#include "acedads.h"
#include "dbents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

void lineCommand() {
  HostApp& app = *HostApp::instance();
  ads_point from = {0, 0, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nFirst point: "), from) != RTNORM) return;
  for (;;) {
    ads_point to = {0, 0, 0};
    if (acedGetPoint(from, ACRX_T("\nNext point: "), to) != RTNORM) return;
    auto* line =
        new AcDbLine(AcGePoint3d(from[0], from[1], from[2]), AcGePoint3d(to[0], to[1], to[2]));
    if (!appendEntity(app, line)) return;
    ads_point_set(to, from);
  }
}

}  // namespace tarn::host
