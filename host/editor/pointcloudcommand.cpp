#include "host/editor/pointcloudcommand.h"

#include <cmath>
#include <memory>

#include "accmd.h"
#include "acedads.h"
#include "base/file.h"
#include "base/text.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/pointcloud/pointcloudentity.h"

namespace tarn::host {

namespace {

struct Placement {
  ads_point insertion = {0, 0, 0};
  ads_real scale = 1;
  ads_real rotation = 0;
};

/// False when the user cancels. Enter takes what is in angle brackets.
bool askPlacement(Placement& place) {
  if (acedGetPoint(nullptr, ACRX_T("\nInsertion point <0,0>: "), place.insertion) == RTCAN) {
    return false;
  }
  acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
  if (acedGetReal(ACRX_T("\nScale <1>: "), &place.scale) == RTCAN) return false;
  return acedGetAngle(place.insertion, ACRX_T("\nRotation in degrees <0>: "), &place.rotation) !=
         RTCAN;
}

}  // namespace

void pointCloudAttachCommand() {
  HostApp& app = *HostApp::instance();
  ACHAR typed[513] = {0};
  if (acedGetString(1, ACRX_T("\nPath of the point cloud file: "), typed) != RTNORM) return;
  if (typed[0] == 0) return;
  const std::string path = absolutePath(toUtf8(typed));
  if (fileKind(path) != FileKind::kRegular) {
    return failCommand(app,
                       path + (fileKind(path) == FileKind::kMissing ? ": there is no such file."
                                                                    : ": this is no file."));
  }
  Placement place;
  if (!askPlacement(place)) return;
  auto cloud = std::make_unique<TarnPointCloud>();
  cloud->setDatabaseDefaults(app.documents().current().database());
  cloud->setPath(path);
  const double c = std::cos(place.rotation) * place.scale;
  const double s = std::sin(place.rotation) * place.scale;
  if (cloud->setPlacement(asPnt3d(place.insertion), {c, s, 0}, {-s, c, 0}) != Acad::eOk) {
    return failCommand(app, "The insertion point, scale or rotation is no sensible number.");
  }
  cloud->readFile();
  appendEntity(app, cloud.release());
}

void addPointCloudCommand(const ACHAR* group) {
  constexpr const ACHAR* kName = ACRX_T("-POINTCLOUDATTACH");
  acedRegCmds->addCommand(group, kName, kName, ACRX_CMD_MODAL, &pointCloudAttachCommand);
}

}  // namespace tarn::host
