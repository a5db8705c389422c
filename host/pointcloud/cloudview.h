// Which part of a cloud the current view shows.
#pragma once

#include "acgipointcloud.h"
#include "adesk.h"
#include "gepnt3d.h"
#include "gevec3d.h"
#include "host/pointcloud/lasheader.h"

namespace tarn::host {

/// Ground position of the whole numbers (x, y) of a file: origin + x * u + y * v.
struct CloudPlacement {
  AcGePoint3d origin;
  AcGeVector3d u{1, 0, 0};
  AcGeVector3d v{0, 1, 0};

  /// That of a file whose coordinates X, Y lie at position + X * xAxis + Y * yAxis.
  static CloudPlacement of(const LasHeader& header, const AcGePoint3d& position,
                           const AcGeVector3d& xAxis, const AcGeVector3d& yAxis);
};

struct CloudView {
  AcGiPointCloud::Box box;
  double spacing = 0;  ///< of pixels, in units of the cloud
};

/// Ground box of the view that is drawn, and the side of a pixel; false when the host has no view.
ACADHOST_EXPORT bool currentGroundView(AcGiPointCloud::Box& box, double& pixel);

/// The view, or the extents of the drawing when the view shows nothing of it; false without either.
ACADHOST_EXPORT bool visibleGround(AcGiPointCloud::Box& box);

/// The view in units of the cloud; false when the placement spans nothing.
ACADHOST_EXPORT bool currentCloudView(const CloudPlacement& placement, CloudView& view);

}  // namespace tarn::host
