// What a plot shows of the drawing, in six values.
#pragma once

#include <array>
#include <optional>

#include "_image/view/pixelwindow.h"
#include "_image/view/viewgeometry.h"

namespace tarn::image {

/// Centre x and y, width and height along the axes of the view (drawing units), pixels a drawing
/// unit, twist of the view (radians). All 0 when nothing is plotted. The turn of the drawing on the
/// sheet is not in them: it turns pixels that are fetched already.
using PlotValues = std::array<double, 6>;

/// The sheet as the plot settings describe it; lengths in millimetres.
struct PlotPaper {
  double width = 0;
  double height = 0;
  double left = 0;  ///< margins
  double bottom = 0;
  double right = 0;
  double top = 0;
  int rotation = 0;  ///< right angles, counter-clockwise
  bool isInches = false;
  bool fits = false;
  double numerator = 1;    ///< paper units ...
  double denominator = 1;  ///< ... a drawing unit
  bool isCentered = false;
  double originX = 0;
  double originY = 0;
  double dotsPerInch = 0;
};

/// What is to be plotted: drawing units, or those of the sheet.
struct PlotArea {
  double centerX = 0;
  double centerY = 0;
  double width = 0;  ///< along the axes of the view
  double height = 0;
  double twist = 0;
};

/// A viewport of the sheet: place in units of the sheet, view in drawing units.
struct PlotViewport {
  double centerX = 0;
  double centerY = 0;
  double width = 0;
  double height = 0;
  double viewCenterX = 0;
  double viewCenterY = 0;
  double viewHeight = 0;
  double twist = 0;
};

/// The box in a view of that twist.
PlotArea areaAround(const GroundRect& box, double twist);

/// The part of the area that falls within the margins.
PlotValues plotValuesOf(const PlotPaper& paper, const PlotArea& area);

/// The part of the model that the viewport shows within `sheet`, which is of the sheet itself.
PlotValues plotValuesThrough(const PlotValues& sheet, const PlotViewport& viewport);

/// The view to fetch pixels for; nothing when nothing is plotted.
std::optional<ViewState> plottedView(const PlotValues& values);

/// The view with fewer pixels.
ViewState coarserView(const ViewState& view, double factor);

}  // namespace tarn::image
