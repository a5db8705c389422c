#include "host/editor/plotjob.h"

#include <algorithm>
#include <functional>

#include "acplplotconfig.h"
#include "acplplotinfo.h"
#include "acplplotreactor.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/regenerator.h"
#include "host/editor/sysvars.h"
#include "host/plot/plotreactors.h"
#include "host/plot/sheetframe.h"

namespace tarn::host {

namespace {

/// Shows another tab of the drawing to whoever asks, without drawing it, and the former one again.
class PlottedTab {
 public:
  PlottedTab(Space& space, const LayoutEntry& layout) : space_(space), before_(space) {
    if (layout.isModel) {
      space_.showModel();
    } else if (space_.isTiled() || space_.sheet().id != layout.id) {
      space_.showSheet(layout);
    }
    space_.leaveModel();
  }
  ~PlottedTab() { space_ = before_; }
  PlottedTab(const PlottedTab&) = delete;
  PlottedTab& operator=(const PlottedTab&) = delete;

 private:
  Space& space_;
  Space before_;
};

/// The public objects that tell reactors about a plot.
class PlotNotice {
 public:
  explicit PlotNotice(const PlotJob& job) {
    LayoutAccess::setData(settings_, job.settings);
    config_.setMaxDeviceDPI(static_cast<unsigned int>(job.dpi));
    config_.setDeviceName(job.target.device == PlotDevice::kPdf ? ACRX_T("PDF") : ACRX_T("PNG"));
    info_.setLayout(job.layout.id);
    info_.setOverrideSettings(&settings_);
    info_.setDeviceOverride(&config_);
  }
  void begin(const std::string& document, const std::string& file) {
    tell([](AcPlPlotReactor& r) { r.beginPlot(); });
    const std::wstring name = toWide(document);
    const std::wstring path = toWide(file);
    tell([&](AcPlPlotReactor& r) { r.beginDocument(info_, name.c_str(), 1, true, path.c_str()); });
    tell([&](AcPlPlotReactor& r) { r.beginPage(info_); });
  }
  void end(bool cancelled) {
    if (cancelled) tell([](AcPlPlotReactor& r) { r.plotCancelled(); });
    tell([](AcPlPlotReactor& r) { r.endPage(); });
    tell([](AcPlPlotReactor& r) { r.endDocument(); });
    tell([](AcPlPlotReactor& r) { r.endPlot(); });
  }

 private:
  template <typename Call>
  void tell(Call call) {
    // A reactor may take itself off the list.
    const std::vector<AcPlPlotReactor*> all = plotReactors().all();
    for (AcPlPlotReactor* reactor : all) call(*reactor);
  }

  AcDbPlotSettings settings_;
  AcPlPlotConfig config_;
  AcPlPlotInfo info_;
};

Result<PlotRegion> regionOfNamedView(AcDbDatabase& database, const std::wstring& name) {
  AcDbViewTable* table = nullptr;
  AcDbViewTableRecord* record = nullptr;
  if (database.getSymbolTable(table, AcDb::kForRead) != Acad::eOk) {
    return Status::error("The drawing has no views; VIEW Save keeps one.");
  }
  const Acad::ErrorStatus status = table->getAt(name.c_str(), record, AcDb::kForRead);
  table->close();
  if (status != Acad::eOk) {
    return Status::error("There is no view \"" + toUtf8(name) + "\"; VIEW ? lists them.");
  }
  const PlotRegion region{{record->centerPoint().x, record->centerPoint().y},
                          record->width(),
                          record->height(),
                          record->viewTwist()};
  record->close();
  return region;
}

GroundBox limitsBox(HostApp& app) {
  const Point3 low = std::get<Point3>(*app.variables().get("LIMMIN"));
  const Point3 high = std::get<Point3>(*app.variables().get("LIMMAX"));
  return {low.x, low.y, high.x, high.y};
}

/// What the settings name, on the tab that is current.
Result<PlotRegion> regionOf(HostApp& app, const PlotJob& job) {
  const ViewState view = app.view();
  switch (job.settings.type) {
    case AcDbPlotSettings::kExtents: {
      const GroundBox box = app.regenerator().extents(app.documents().current());
      if (box.isEmpty())
        return Status::error(
            "There is nothing to plot: draw something first, or choose another area.");
      return regionAround(box, view.twist);
    }
    case AcDbPlotSettings::kLimits:
      return regionAround(limitsBox(app), view.twist);
    case AcDbPlotSettings::kView:
      return regionOfNamedView(*job.layout.id.database(), job.settings.view);
    case AcDbPlotSettings::kWindow:
      return regionOfWindow(job.settings, view.twist);
    case AcDbPlotSettings::kLayout:
      if (!job.layout.isModel) return regionAround(printableBoxOf(job.settings), 0);
      return Status::error("The model has no layout to plot; choose another area.");
    default:
      return PlotRegion{{view.centerX, view.centerY},
                        view.height * view.pixelWidth / view.pixelHeight,
                        view.height,
                        view.twist};
  }
}

/// Moves the progress display as entities are drawn, and hears the user's wish to stop.
class PlotProgress {
 public:
  PlotProgress(FrontEnd& frontEnd, size_t entities) : frontEnd_(frontEnd), steps_(entities) {
    frontEnd_.progressBegin("Plotting", 0, kWhole);
  }
  ~PlotProgress() { frontEnd_.progressEnd(); }
  PlotProgress(const PlotProgress&) = delete;
  PlotProgress& operator=(const PlotProgress&) = delete;

  bool proceed() {
    done_ = std::min(done_ + 1, steps_);
    const int now = steps_ > 0 ? static_cast<int>(done_ * kWhole / steps_) : kWhole;
    if (now != shown_) frontEnd_.progressMove(shown_ = now);
    return !frontEnd_.cancelWanted();
  }

 private:
  static constexpr int kWhole = 100;
  FrontEnd& frontEnd_;
  size_t steps_;
  size_t done_ = 0;
  int shown_ = 0;
};

size_t entitiesIn(AcDbObjectId block) {
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
  return record.openStatus() == Acad::eOk ? static_cast<size_t>(record->entityIds().length()) : 0;
}

/// Draws a block for the part of the page that a layer covers.
class LayerRecorder {
 public:
  LayerRecorder(HostApp& app, const PlotPlan& plan, std::function<bool()> proceed)
      : app_(app),
        space_(app.documents().current().space()),
        plan_(plan),
        proceed_(std::move(proceed)) {}

  PlotLayer layer(AcDbObjectId viewport, AcDbObjectId block, const ViewState& view,
                  const QRectF& clip) const {
    const ViewState part = croppedView(view, touchedPixels(clip, plan_.page));
    const auto record = [this, viewport, block, part](Scene& scene) {
      const DrawnViewport drawn(space_, viewport, part);
      return app_.regenerator().recordPlot(scene, block, proceed_);
    };
    return {record, view, clip};
  }

  /// The model through the viewports of a sheet, then what is shown itself.
  std::vector<PlotLayer> all() const {
    std::vector<PlotLayer> layers;
    for (const SheetWindow& window : space_.windows()) {
      const PlottedWindow plotted = plottedWindow(plan_, window.place);
      if (plotted.clip.isEmpty()) continue;
      layers.push_back(layer(window.id, space_.modelBlock(), plotted.view, plotted.clip));
    }
    layers.push_back(layer(AcDbObjectId(), space_.shownBlock(), plan_.page, plan_.clip));
    return layers;
  }

 private:
  HostApp& app_;
  Space& space_;
  const PlotPlan& plan_;
  std::function<bool()> proceed_;
};

Status plotPage(HostApp& app, const PlotJob& job, const PlotPlan& plan) {
  const Space& space = app.documents().current().space();
  PlotProgress progress(
      app.frontEnd(),
      entitiesIn(space.shownBlock()) + space.windows().size() * entitiesIn(space.modelBlock()));
  const auto proceed = [&] { return progress.proceed(); };
  const LayerRecorder recorder(app, plan, proceed);
  return writePlot(plan, recorder.all(), job.target, RenderStyle(), proceed);
}

}  // namespace

void nameAfterDevice(PlotTarget& target) {
  const size_t stem = target.path.size() - extensionOf(target.path).size();
  target.path = target.path.substr(0, stem) + (target.device == PlotDevice::kPdf ? ".pdf" : ".png");
}

ViewState viewOfTab(HostApp& app, const LayoutEntry& layout) {
  const PlottedTab tab(app.documents().current().space(), layout);
  return app.view();
}

Result<PlotPlan> planJob(HostApp& app, const PlotJob& job) {
  const PlottedTab tab(app.documents().current().space(), job.layout);
  const Result<PlotRegion> region = regionOf(app, job);
  if (!region) return region.status();
  return planPlot(job.settings, region.value(), job.dpi);
}

std::vector<ShownLayer> layersOnScreen(HostApp& app, const PlotJob& job, const PlotPlan& plan) {
  HostDocument& document = app.documents().current();
  std::vector<ShownLayer> layers;
  if (document.space().tab().id != job.layout.id) return layers;
  for (const SheetWindow& window : document.space().windows()) {
    const PlottedWindow plotted = plottedWindow(plan, window.place);
    const auto scene = document.windowScenes().find(window.id);
    if (scene == document.windowScenes().end() || plotted.clip.isEmpty()) continue;
    layers.push_back({&scene->second, plotted.view, plotted.clip});
  }
  layers.push_back({&document.scene(), plan.page, plan.clip});
  return layers;
}

PlotJob defaultJob(HostApp& app, const LayoutEntry& layout) {
  PlotJob job;
  job.layout = layout;
  const AcDbObjectPointer<AcDbLayout> open(layout.id, AcDb::kForRead);
  if (open.openStatus() == Acad::eOk) job.settings = LayoutAccess::data(*open.object());
  // Many programs give the model a plot type that only a sheet can have.
  if (layout.isModel && job.settings.type == AcDbPlotSettings::kLayout) job.settings.showDisplay();
  const std::string drawing = absolutePath(app.documents().current().path());
  const std::string name = nameOf(drawing);
  const std::string stem = name.substr(0, name.size() - extensionOf(name).size());
  job.target.path = joinPath(folderOf(drawing), stem + "-" + layout.name + ".pdf");
  job.target.title = stem + " " + layout.name;
  return job;
}

Status runPlot(HostApp& app, const PlotJob& job) {
  if (Status status = checkPlotTarget(job.target.path); !status) return status;
  const Result<PlotPlan> plan = planJob(app, job);
  if (!plan) return plan.status();
  const PlottedTab tab(app.documents().current().space(), job.layout);
  PlotNotice notice(job);
  notice.begin(app.documentTitle(), job.target.path);
  Status status = plotPage(app, job, plan.value());
  notice.end(!status && status.message().empty());
  return status;
}

}  // namespace tarn::host
