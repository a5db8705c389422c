#include "_image/plotarea.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "_image/moduleglobals.h"
#include "_image/view/plotvalues.h"
#include "acedads.h"
#include "acplplotconfig.h"
#include "acplplotinfo.h"
#include "dbents.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace tarn::image {
namespace {

AcGePoint2d pointVariable(const ACHAR* name) {
  resbuf value{};
  if (acedGetVar(name, &value) != RTNORM) return {};
  return {value.resval.rpoint[0], value.resval.rpoint[1]};
}

double realVariable(const ACHAR* name) {
  resbuf value{};
  return acedGetVar(name, &value) == RTNORM ? value.resval.rreal : 0.0;
}

PlotPaper paperOf(const AcDbPlotSettings& settings, double dotsPerInch) {
  PlotPaper paper;
  settings.getPlotPaperSize(paper.width, paper.height);
  settings.getPlotPaperMargins(paper.left, paper.bottom, paper.right, paper.top);
  settings.getPlotOrigin(paper.originX, paper.originY);
  settings.getCustomPrintScale(paper.numerator, paper.denominator);
  paper.rotation = settings.plotRotation();
  paper.isInches = settings.plotPaperUnits() == AcDbPlotSettings::kInches;
  paper.fits = settings.useStandardScale();
  paper.isCentered = settings.plotCentered();
  paper.dotsPerInch = dotsPerInch;
  return paper;
}

PlotArea displayedArea() {
  const AcGePoint2d center = pointVariable(L"VIEWCTR");
  const AcGePoint2d screen = pointVariable(L"SCREENSIZE");
  const double height = realVariable(L"VIEWSIZE");
  return {center.x, center.y, screen.y > 0 ? height * screen.x / screen.y : 0, height,
          realVariable(L"VIEWTWIST")};
}

PlotArea areaBetween(const ACHAR* lower, const ACHAR* upper) {
  const AcGePoint2d a = pointVariable(lower);
  const AcGePoint2d b = pointVariable(upper);
  return areaAround({a.x, a.y, b.x, b.y}, realVariable(L"VIEWTWIST"));
}

PlotArea windowArea(const AcDbPlotSettings& settings) {
  double minX = 0;
  double minY = 0;
  double maxX = 0;
  double maxY = 0;
  settings.getPlotWindowArea(minX, minY, maxX, maxY);
  const double twist = realVariable(L"VIEWTWIST");
  const double x = (minX + maxX) / 2;
  const double y = (minY + maxY) / 2;
  const double c = std::cos(twist);
  const double s = std::sin(twist);
  return {x * c + y * s, y * c - x * s, maxX - minX, maxY - minY, twist};
}

PlotArea namedViewArea(const AcDbPlotSettings& settings, AcDbDatabase& database) {
  const ACHAR* name = L"";
  settings.getPlotViewName(name);
  AcDbViewTable* views = nullptr;
  AcDbViewTableRecord* view = nullptr;
  if (database.getSymbolTable(views, AcDb::kForRead) != Acad::eOk) return {};
  views->getAt(name, view, AcDb::kForRead);
  views->close();
  if (!view) return {};
  const PlotArea area{view->centerPoint().x, view->centerPoint().y, view->width(), view->height(),
                      view->viewTwist()};
  view->close();
  return area;
}

/// The printable part, whose lower left corner is the origin of a sheet.
PlotArea sheetArea(const PlotPaper& paper) {
  const bool isLying = paper.rotation % 2 != 0;
  const double w = paper.width - paper.left - paper.right;
  const double h = paper.height - paper.bottom - paper.top;
  const double unit = paper.isInches ? 25.4 : 1.0;
  const double units = paper.denominator / paper.numerator / unit;
  const double width = (isLying ? h : w) * units;
  const double height = (isLying ? w : h) * units;
  return {width / 2, height / 2, width, height, 0};
}

/// The area that the plot type names; nothing for a value that is no type.
std::optional<PlotArea> plottedArea(const AcDbPlotSettings& settings, const PlotPaper& paper,
                                    AcDbDatabase& database) {
  switch (settings.plotType()) {
    case AcDbPlotSettings::kDisplay:
      return displayedArea();
    case AcDbPlotSettings::kExtents:
      return areaBetween(L"EXTMIN", L"EXTMAX");
    case AcDbPlotSettings::kLimits:
      return areaBetween(L"LIMMIN", L"LIMMAX");
    case AcDbPlotSettings::kView:
      return namedViewArea(settings, database);
    case AcDbPlotSettings::kWindow:
      return windowArea(settings);
    case AcDbPlotSettings::kLayout:
      return sheetArea(paper);
    default:
      return std::nullopt;
  }
}

PlotViewport plotViewportOf(const AcDbViewport& viewport) {
  const AcGePoint2d shown = viewport.viewCenter();
  const AcGePoint3d target = viewport.viewTarget();
  const double c = std::cos(viewport.twistAngle());
  const double s = std::sin(viewport.twistAngle());
  return {viewport.centerPoint().x,
          viewport.centerPoint().y,
          viewport.width(),
          viewport.height(),
          target.x + shown.x * c + shown.y * s,
          target.y + shown.y * c - shown.x * s,
          viewport.viewHeight(),
          viewport.twistAngle()};
}

}  // namespace

void rememberPlot(const AcPlPlotInfo& info) {
  forgetPlot();
  const AcDbObjectPointer<AcDbLayout> layout(info.layout(), AcDb::kForRead);
  if (layout.openStatus() != Acad::eOk) return;
  const AcDbPlotSettings* settings = info.overrideSettings();
  if (!settings) settings = layout.object();
  const double dotsPerInch = info.deviceOverride() ? info.deviceOverride()->maxDeviceDPI() : 300.0;
  const PlotPaper paper = paperOf(*settings, dotsPerInch);
  const auto area = plottedArea(*settings, paper, *layout->database());
  if (!area) return;
  const PlotValues values = plotValuesOf(paper, *area);
  std::copy(values.begin(), values.end(), std::begin(g_plotValues));
  if (layout->modelType()) return;
  for (const AcDbObjectId& id : layout->getViewportArray()) {
    const AcDbObjectPointer<AcDbViewport> viewport(id, AcDb::kForRead);
    if (viewport.openStatus() != Acad::eOk) continue;
    g_plotViewports[id] = plotValuesThrough(values, plotViewportOf(*viewport.object()));
  }
}

void forgetPlot() {
  std::fill(std::begin(g_plotValues), std::end(g_plotValues), 0.0);
  g_plotViewports.clear();
}

}  // namespace tarn::image
