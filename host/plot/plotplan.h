// Where on the page what is plotted falls. Pure.
#pragma once

#include <QRectF>

#include "adesk.h"
#include "base/result.h"
#include "host/database/plotdata.h"
#include "host/graphics/paperwindow.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

/// What is plotted: of the model, or of the sheet in sheet coordinates. Width and height lie along
/// the axes of the view, which a twist turns against the ground.
struct PlotRegion {
  GroundPoint center;
  double width = 0;
  double height = 0;
  double twist = 0;  ///< radians
};

/// The region that shows the whole box in a view of that twist.
ACADHOST_EXPORT PlotRegion regionAround(const GroundBox& box, double twist);
/// The region of two corners given along the screen of a view of that twist.
ACADHOST_EXPORT PlotRegion regionOfWindow(const PlotData& settings, double twist);

struct PlotPlan {
  int dpi = 300;
  double paperWidth = 0;  ///< millimetres
  double paperHeight = 0;
  ViewState page;           ///< over the whole page, in pixels of the resolution
  QRectF clip;              ///< page pixels: the region as far as it lies within the margins
  bool lineWeights = true;  ///< lines are as wide as their weight says
};

/// The clip's upper left corner, as the region stands, falls on a whole pixel: so the pixels of
/// pictures are those of the page. That moves the region by less than one of them.
/// Fails for paper without a printable part, a region without area or outside it, and a page of
/// more than 65,000 pixels a side.
ACADHOST_EXPORT Result<PlotPlan> planPlot(const PlotData& settings, const PlotRegion& region,
                                          int dpi);

/// What a viewport shows on the planned page of its sheet, and where; an empty clip when none of it
/// is printed. Its model is moved by less than a pixel likewise.
struct PlottedWindow {
  ViewState view;
  QRectF clip;
};
ACADHOST_EXPORT PlottedWindow plottedWindow(const PlotPlan& plan, const PaperWindow& window);

}  // namespace tarn::host
