#include "_image/imagezoom.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "aced.h"
#include "acedads.h"
#include "dbsymtb.h"

namespace tarn::image {
namespace {

constexpr double kMargin = 0.05;
constexpr int kPaperSpacePort = 1;
/// Bits of VIEWMODE.
constexpr int kPerspective = 1;
constexpr int kFrontClip = 2;
constexpr int kBackClip = 4;
constexpr int kFrontNotAtEye = 16;

double realOf(const ACHAR* name) {
  resbuf value{};
  return acedGetVar(name, &value) == RTNORM ? value.resval.rreal : 0.0;
}

int shortOf(const ACHAR* name) {
  resbuf value{};
  return acedGetVar(name, &value) == RTNORM ? value.resval.rint : 0;
}

AcGeVector3d viewDirection() {
  resbuf value{};
  if (acedGetVar(L"VIEWDIR", &value) != RTNORM) return {0, 0, 1};
  ads_point world = {0, 0, 1};
  acdbUcs2Wcs(value.resval.rpoint, world, true);
  return {world[0], world[1], world[2]};
}

std::optional<ZoomWindow> windowOf(CDocData& record, const std::wstring& path) {
  const OpenedImage image(record, AcDb::kForRead);
  double upperLeft[2];
  double lowerRight[2];
  if (!image || !image->cornersOf(path, upperLeft, lowerRight)) return std::nullopt;
  return zoomWindow(upperLeft, lowerRight, realOf(L"VIEWTWIST"));
}

}  // namespace

ZoomWindow zoomWindow(const double upperLeft[2], const double lowerRight[2], double twist) {
  const double x = (upperLeft[0] + lowerRight[0]) / 2;
  const double y = (upperLeft[1] + lowerRight[1]) / 2;
  const double width = std::fabs(lowerRight[0] - upperLeft[0]);
  const double height = std::fabs(upperLeft[1] - lowerRight[1]);
  const double c = std::fabs(std::cos(twist));
  const double s = std::fabs(std::sin(twist));
  const double halfWidth = (width * c + height * s) * (0.5 + kMargin);
  const double halfHeight = (width * s + height * c) * (0.5 + kMargin);
  return {x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight};
}

void fillViewRecord(AcDbViewTableRecord& view, const ZoomWindow& window) {
  view.setCenterPoint({(window.left + window.right) / 2, (window.bottom + window.top) / 2});
  view.setHeight(std::fabs(window.top - window.bottom));
  view.setWidth(std::fabs(window.right - window.left));
  view.setViewDirection(viewDirection());
  view.setLensLength(realOf(L"LENSLENGTH"));
  view.setViewTwist(realOf(L"VIEWTWIST"));
  view.setFrontClipDistance(realOf(L"FRONTZ"));
  view.setBackClipDistance(realOf(L"BACKZ"));
  const int mode = shortOf(L"VIEWMODE");
  view.setPerspectiveEnabled((mode & kPerspective) != 0);
  view.setFrontClipEnabled((mode & kFrontClip) != 0);
  view.setBackClipEnabled((mode & kBackClip) != 0);
  view.setFrontClipAtEye((mode & kFrontNotAtEye) == 0);
  view.setIsPaperspaceView(shortOf(L"TILEMODE") == 0 && shortOf(L"CVPORT") == kPaperSpacePort);
}

bool zoomToImage(CDocData& record, const std::wstring& path) {
  const std::optional<ZoomWindow> window = windowOf(record, path);
  if (!window) return false;
  AcDbViewTableRecord view;
  fillViewRecord(view, *window);
  return acedSetCurrentView(&view, nullptr) == Acad::eOk;
}

bool zoomByCommand(CDocData& record, const std::wstring& path) {
  double x = 0;
  double y = 0;
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || !image->GetImageCenterPt(path, x, y)) return false;
  }
  const std::optional<ZoomWindow> window = windowOf(record, path);
  if (!window) return false;
  resbuf screen{};
  double aspect = 1;
  if (acedGetVar(L"SCREENSIZE", &screen) == RTNORM && screen.resval.rpoint[0] > 0) {
    aspect = screen.resval.rpoint[1] / screen.resval.rpoint[0];
  }
  const double height =
      std::max(window->top - window->bottom, (window->right - window->left) * aspect);
  const ads_point centre = {x, y, 0};
  return acedCommandS(RTSTR, L"zoom", RTSTR, L"c", RTPOINT, centre, RTREAL, height, RTNONE) ==
         RTNORM;
}

}  // namespace tarn::image
