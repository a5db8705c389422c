// The sheet of a layout as its drawing sees it: turned, with margins, in the sheet's own units.
#pragma once

#include "adesk.h"
#include "host/database/plotdata.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

/// Millimetres, in the directions of the drawing on the sheet.
struct SheetFrame {
  double width = 0;
  double height = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;
  double top = 0;
};

/// Radians, counter-clockwise.
ACADHOST_EXPORT double rotationOf(const PlotData& settings);

/// The sheet before the rotation of the plot is applied to it.
ACADHOST_EXPORT SheetFrame frameOf(const PlotData& settings);

/// Drawing units a millimetre of paper at the settings' scale.
ACADHOST_EXPORT double unitsPerMillimetre(const PlotData& settings);

/// Paper and printable part in the coordinates of the layout's entities, whose origin is the lower
/// left corner of the printable part.
ACADHOST_EXPORT GroundBox paperBoxOf(const PlotData& settings);
ACADHOST_EXPORT GroundBox printableBoxOf(const PlotData& settings);

}  // namespace tarn::host
