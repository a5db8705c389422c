// Paper sizes, scales and offsets as the user writes them.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"
#include "host/database/plotdata.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

/// Of paper, in millimetres.
constexpr double kLeastPaperSide = 10;
constexpr double kMostPaperSide = 5000;

/// "A0" to "A4".
ACADHOST_EXPORT std::vector<std::string> paperNames();

/// Each sets what the text says, or changes nothing and gives the sentence that says what is wrong.
/// A named paper keeps the orientation, "WIDTHxHEIGHT" (millimetres, 10 to 5,000) sets it.
ACADHOST_EXPORT std::string setPaper(PlotData& settings, const std::string& text);
/// "Fit", "a=b" or "a:b": paper units of a are drawing units of b.
ACADHOST_EXPORT std::string setScale(PlotData& settings, const std::string& text);
/// "Center" or "x,y" in millimetres.
ACADHOST_EXPORT std::string setOffset(PlotData& settings, const std::string& text);

ACADHOST_EXPORT void setLandscape(PlotData& settings, bool landscape);
/// Two corners on the ground as the window of a view of that twist (radians).
ACADHOST_EXPORT void setWindow(PlotData& settings, GroundPoint a, GroundPoint b, double twist);

}  // namespace tarn::host
