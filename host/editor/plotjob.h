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
  bool keepsSettings = false;  ///< the layout gets these settings before it is plotted
};

constexpr int kLowestDpi = 30;
constexpr int kHighestDpi = 2400;

/// The settings and targets that a plot of the layout starts with: its own, a PDF beside the
/// drawing that is named after both.
ACADHOST_EXPORT PlotJob defaultJob(HostApp& app, const LayoutEntry& layout);

/// Gives the target's name the ending of its device.
ACADHOST_EXPORT void nameAfterDevice(PlotTarget& target);

/// The view of the layout's tab, which need not be the one that is shown.
ViewState viewOfTab(HostApp& app, const LayoutEntry& layout);

/// Where the plot of the job falls on its page, or the sentence that says why it cannot be made.
ACADHOST_EXPORT Result<PlotPlan> planJob(HostApp& app, const PlotJob& job);

/// A scene of the screen on a page.
struct ShownLayer {
  const Scene* scene = nullptr;  ///< not owned
  ViewState view;
  QRectF clip;
};

/// What the screen holds of the planned page, for a preview; empty for a tab that is not shown. The
/// scenes live until the next regeneration.
ACADHOST_EXPORT std::vector<ShownLayer> layersOnScreen(HostApp& app, const PlotJob& job,
                                                       const PlotPlan& plan);

/// The tab of the layout is current while it is plotted; the screen is not drawn. Reactors are told
/// in their order. Shows progress and stops when the user wants that: then there is no file, and
/// the status is an error without a text. Errors name the file or say what is wrong with the area.
Status runPlot(HostApp& app, const PlotJob& job);

/// Shows the settings where the front end can, else (and with CMDDIA 0) asks for everything.
void plotCommand();

}  // namespace tarn::host
