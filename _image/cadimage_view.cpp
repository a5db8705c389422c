// The view as the host's system variables describe it at the moment of drawing.
#include <algorithm>
#include <iterator>

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/displaysettings.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "_image/view/plotvalues.h"
#include "aced.h"
#include "acedads.h"
#include "rxmfcapi.h"

using tarn::image::GroundRect;
using tarn::image::ScreenSize;
using tarn::image::ViewSize;
using tarn::image::ViewState;

namespace {

constexpr int kPaperSpacePort = 1;

double realVariable(const ACHAR* name) {
  resbuf value{};
  return acedGetVar(name, &value) == RTNORM ? value.resval.rreal : 0.0;
}

AcGePoint3d pointVariable(const ACHAR* name) {
  resbuf value{};
  if (acedGetVar(name, &value) != RTNORM) return {};
  const double z = value.restype == RT3DPOINT ? value.resval.rpoint[2] : 0.0;
  return {value.resval.rpoint[0], value.resval.rpoint[1], z};
}

ScreenSize screenSize() {
  const AcGePoint3d size = pointVariable(L"SCREENSIZE");
  return {tarn::image::truncateToInt(size.x), tarn::image::truncateToInt(size.y)};
}

/// Where a draw asks for the view while paper space is current, model space is made current and
/// paper space again in the end. The commands for that notify reactors, so the flags are kept.
class PaperSpaceBracket {
 public:
  explicit PaperSpaceBracket(const CCadImage& image)
      : isActive_(!image.IsInModelSpace() && image.GetCVPort() == kPaperSpacePort),
        flags_(tarn::image::g_refresh) {
    if (isActive_) acedCommandS(RTSTR, L"MSPACE", RTNONE);
  }
  ~PaperSpaceBracket() {
    if (!isActive_) return;
    acedCommandS(RTSTR, L"PSPACE", RTNONE);
    tarn::image::g_refresh = flags_;
  }
  PaperSpaceBracket(const PaperSpaceBracket&) = delete;
  PaperSpaceBracket& operator=(const PaperSpaceBracket&) = delete;

 private:
  bool isActive_;
  tarn::image::RefreshFlags flags_;
};

/// The program-wide switch for the time of one call.
class ScreenRectOldScope {
 public:
  explicit ScreenRectOldScope(bool isOn) : before_(tarn::image::g_useScreenRectOld) {
    tarn::image::g_useScreenRectOld = isOn;
  }
  ~ScreenRectOldScope() { tarn::image::g_useScreenRectOld = before_; }
  ScreenRectOldScope(const ScreenRectOldScope&) = delete;
  ScreenRectOldScope& operator=(const ScreenRectOldScope&) = delete;

 private:
  bool before_;
};

}  // namespace

void CCadImage::getScreenPixelNumXY(int& width, int& height) {
  const PaperSpaceBracket bracket(*this);
  const ScreenSize screen = screenSize();
  width = m_screenPixelWidth = screen.width;
  height = m_screenPixelHeight = screen.height;
  ++tarn::image::g_screenSizeReads;
}

void CCadImage::GetViewSize(double& width, double& height, double& centreX, double& centreY) const {
  const PaperSpaceBracket bracket(*this);
  const ScreenSize screen = screenSize();
  ads_point lowerLeft{};
  ads_point upperRight{};
  acedCoordFromPixelToWorld(GetCVPort(), CPoint(0, screen.height), lowerLeft);
  acedCoordFromPixelToWorld(GetCVPort(), CPoint(screen.width, 0), upperRight);
  const ViewSize size = tarn::image::viewSizeFromCorners({lowerLeft[0], lowerLeft[1]},
                                                         {upperRight[0], upperRight[1]});
  width = size.width;
  height = size.height;
  centreX = size.centerX;
  centreY = size.centerY;
}

QTransform CCadImage::GetTransform(int& width, int& height) {
  const PaperSpaceBracket bracket(*this);
  ViewSize size;
  GetViewSize(size.width, size.height, size.centerX, size.centerY);
  const ScreenSize screen = screenSize();
  width = screen.width;
  height = screen.height;
  m_transform = tarn::image::groundToScreen(size, screen, GetRotateAngle());
  return m_transform;
}

void CCadImage::GetScreenRect(double& maxY, double& minY, double& minX, double& maxX) {
  if (tarn::image::g_useScreenRectOld) {
    GetScreenRectOld(maxY, minY, minX, maxX);
    return;
  }
  const PaperSpaceBracket bracket(*this);
  ScreenSize screen;
  const QTransform transform = GetTransform(screen.width, screen.height);
  const GroundRect rect = tarn::image::diagonalRect(transform, screen);
  maxY = rect.maxY;
  minY = rect.minY;
  minX = rect.minX;
  maxX = rect.maxX;
}

void CCadImage::GetScreenRectOld(double& maxY, double& minY, double& minX, double& maxX) const {
  const PaperSpaceBracket bracket(*this);
  const AcGePoint3d center = pointVariable(L"VIEWCTR");
  const GroundRect rect = tarn::image::wholeViewRect(
      {center.x, center.y}, realVariable(L"VIEWSIZE"), screenSize(), GetRotateAngle());
  maxY = rect.maxY;
  minY = rect.minY;
  minX = rect.minX;
  maxX = rect.maxX;
}

QPolygonF CCadImage::mapToScene(const QTransform& transform, const QRect& rect) const {
  return tarn::image::mapPixelRect(transform, rect);
}

double CCadImage::GetRotateAngle() const {
  return realVariable(L"VIEWTWIST");
}

bool CCadImage::IsInModelSpace() const {
  resbuf value{};
  return acedGetVar(L"TILEMODE", &value) == RTNORM && value.resval.rint == 1;
}

void CCadImage::GetViewDirect(AcGeVector3d& direction) const {
  const AcGePoint3d value = pointVariable(L"VIEWDIR");
  direction = AcGeVector3d(value.x, value.y, value.z);
}

bool CCadImage::isShowThisImage(const std::wstring& path) const {
  const CDocData* record = g_dataMap ? g_dataMap->ofDatabase(database()) : nullptr;
  return record && record->isDisplayed(path);
}

bool CCadImage::imageCoordinate2pixelCoordinate(int& /*left*/, int& /*top*/, int& /*right*/,
                                                int& /*bottom*/, double& /*x*/,
                                                double& /*y*/) const {
  return true;
}

void CCadImage::getViewportImagePixelCoord(int& /*left*/, int& /*top*/, int& /*right*/,
                                           int& /*bottom*/) const {}

std::optional<ViewState> CCadImage::plottedView() const {
  tarn::image::PlotValues values;
  std::copy(std::begin(tarn::image::g_plotValues), std::end(tarn::image::g_plotValues),
            values.begin());
  if (IsInModelSpace()) return tarn::image::plottedView(values);
  const PaperSpaceBracket bracket(*this);
  const auto found = tarn::image::g_plotViewports.find(acedGetCurViewportObjectId());
  if (found == tarn::image::g_plotViewports.end()) return std::nullopt;
  return tarn::image::plottedView(found->second);
}

ViewState CCadImage::currentView() {
  const PaperSpaceBracket bracket(*this);
  ViewState view;
  view.clarity = tarn::image::clarityRatio();
  const double offset = tarn::image::offsetRatio();
  getScreenPixelNumXY(view.pixelWidth, view.pixelHeight);
  view.pixelWidth = tarn::image::truncateToInt(view.pixelWidth * offset);
  view.pixelHeight = tarn::image::truncateToInt(view.pixelHeight * offset);
  m_screenPixelWidth = view.pixelWidth;
  m_screenPixelHeight = view.pixelHeight;
  view.twist = GetRotateAngle();

  ScreenSize screen;
  view.transform = GetTransform(screen.width, screen.height);
  const ScreenRectOldScope wholeTwistedViews(view.twist != 0);
  GroundRect nominal;
  GetScreenRect(nominal.maxY, nominal.minY, nominal.minX, nominal.maxX);
  view.viewRect = nominal;
  if (view.twist == 0) {
    ViewSize size;
    GetViewSize(size.width, size.height, size.centerX, size.centerY);
    view.viewRect = {size.centerX - size.width / 2, size.centerY - size.height / 2,
                     size.centerX + size.width / 2, size.centerY + size.height / 2};
  }
  view.fetchRect = tarn::image::enlarged(view.viewRect, offset);
  view.nominalRect = tarn::image::enlarged(nominal, offset);
  return view;
}
