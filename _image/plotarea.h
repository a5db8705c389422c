// What a plot shows, read from the host's plot information.
#pragma once

class AcPlPlotInfo;

namespace tarn::image {

/// Fills the six plot values and, when a sheet is plotted, those of its viewports.
void rememberPlot(const AcPlPlotInfo& info);
/// All values 0 again.
void forgetPlot();

}  // namespace tarn::image
