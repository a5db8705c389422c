// One plot: what it needs, and running it.
#pragma once

#include <string>

#include "base/result.h"
#include "host/database/layouts.h"
#include "host/plot/plotfile.h"

namespace tarn::host {

class HostApp;

struct PlotJob {
  LayoutEntry layout;
  PlotData settings;
  int dpi = 300;
  PlotTarget target;
};

constexpr int kLowestDpi = 30;
constexpr int kHighestDpi = 2400;

/// The settings and targets that a plot of the layout starts with: its own, a PDF beside the
/// drawing that is named after both.
PlotJob defaultJob(HostApp& app, const LayoutEntry& layout);

/// The tab of the layout is current while it is plotted; the screen is not drawn. Reactors are told
/// in their order. Shows progress and stops when the user wants that: then there is no file, and
/// the status is an error without a text. Errors name the file or say what is wrong with the area.
Status runPlot(HostApp& app, const PlotJob& job);

/// Asks for everything by prompts.
void plotCommand();

}  // namespace tarn::host
