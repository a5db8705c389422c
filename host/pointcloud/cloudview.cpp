#include "host/pointcloud/cloudview.h"

#include <cmath>

#include "acedads.h"
#include "host/pointcloud/cloudbox.h"
#include "tarnhost.h"

namespace tarn::host {

namespace {

bool readVariable(const ACHAR* name, short type, resbuf& value) {
  value = resbuf{};
  return acedGetVar(name, &value) == RTNORM && value.restype == type;
}

}  // namespace

CloudPlacement CloudPlacement::of(const LasHeader& header, const AcGePoint3d& position,
                                  const AcGeVector3d& xAxis, const AcGeVector3d& yAxis) {
  return {position + xAxis * header.offset[0] + yAxis * header.offset[1], xAxis * header.scale[0],
          yAxis * header.scale[1]};
}

bool currentGroundView(AcGiPointCloud::Box& box, double& pixel) {
  TarnView view;
  if (!tarnHostDrawnView(view) || !(view.height > 0) || !(view.width > 0)) return false;
  pixel = view.pixel;
  const double c = std::fabs(std::cos(view.twist));
  const double s = std::fabs(std::sin(view.twist));
  const double halfX = (view.width * c + view.height * s) / 2;
  const double halfY = (view.width * s + view.height * c) / 2;
  box = {view.centerX - halfX, view.centerY - halfY, view.centerX + halfX, view.centerY + halfY};
  return true;
}

bool visibleGround(AcGiPointCloud::Box& box) {
  double pixel = 0;
  if (!currentGroundView(box, pixel)) return false;
  resbuf low{};
  resbuf high{};
  if (!readVariable(ACRX_T("EXTMIN"), RT3DPOINT, low) ||
      !readVariable(ACRX_T("EXTMAX"), RT3DPOINT, high)) {
    return true;
  }
  const AcGiPointCloud::Box all{low.resval.rpoint[0], low.resval.rpoint[1], high.resval.rpoint[0],
                                high.resval.rpoint[1]};
  const bool isEmpty = all.minX > all.maxX || all.minY > all.maxY;
  if (!isEmpty && !overlap(box, all)) box = all;
  return true;
}

bool currentCloudView(const CloudPlacement& placement, CloudView& view) {
  AcGiPointCloud::Box ground;
  double pixel = 0;
  const AcGeVector3d& u = placement.u;
  const AcGeVector3d& v = placement.v;
  const double area = u.x * v.y - v.x * u.y;
  if (area == 0 || !currentGroundView(ground, pixel)) return false;
  view.box = emptyCloudBox();
  for (const double gx : {ground.minX, ground.maxX}) {
    for (const double gy : {ground.minY, ground.maxY}) {
      const double dx = gx - placement.origin.x;
      const double dy = gy - placement.origin.y;
      const double x = (dx * v.y - dy * v.x) / area;
      const double y = (dy * u.x - dx * u.y) / area;
      addTo(view.box, x, y);
    }
  }
  view.spacing = pixel / std::sqrt(std::fabs(area));
  return std::isfinite(view.spacing) && std::isfinite(view.box.minX + view.box.maxX) &&
         std::isfinite(view.box.minY + view.box.maxY);
}

}  // namespace tarn::host
