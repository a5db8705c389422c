#include "host/editor/plotjob.h"

#include <list>

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
    return Status::error("The drawing has no views.");
  }
  const Acad::ErrorStatus status = table->getAt(name.c_str(), record, AcDb::kForRead);
  table->close();
  if (status != Acad::eOk) {
    return Status::error("There is no view \"" + toUtf8(name) + "\".");
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
      if (box.isEmpty()) return Status::error("There is nothing to plot.");
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

/// The scenes of a plot and where they go on the page. A list keeps its scenes where they are.
struct Recording {
  std::list<Scene> scenes;
  std::vector<PlotLayer> layers;
};

/// False when it was stopped.
bool recordLayers(HostApp& app, const PlotPlan& plan, Recording& out) {
  HostDocument& document = app.documents().current();
  Space& space = document.space();
  Regenerator& regenerator = app.regenerator();
  for (const SheetWindow& window : space.windows()) {
    const PlottedWindow plotted = plottedWindow(plan, window.place);
    if (plotted.clip.isEmpty()) continue;
    Scene& scene = out.scenes.emplace_back();
    const QRect pixels = touchedPixels(plotted.clip, plan.page);
    const DrawnViewport drawn(space, window.id, croppedView(plotted.view, pixels));
    if (!regenerator.recordPlot(scene, space.modelBlock())) return false;
    out.layers.push_back({&scene, plotted.view, plotted.clip});
  }
  Scene& own = out.scenes.emplace_back();
  out.layers.push_back({&own, plan.page, plan.clip});
  return regenerator.recordPlot(own, space.shownBlock());
}

Status plotPages(HostApp& app, const PlotJob& job, const PlotPlan& plan) {
  Recording recording;
  const auto proceed = [&] { return !app.frontEnd().cancelWanted(); };
  if (!recordLayers(app, plan, recording)) return Status::error("");
  constexpr int kRecorded = 60;
  app.frontEnd().progressMove(kRecorded);
  return writePlot(plan, recording.layers, job.target, RenderStyle(), proceed);
}

}  // namespace

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
  const PlottedTab tab(app.documents().current().space(), job.layout);
  const Result<PlotRegion> region = regionOf(app, job);
  if (!region) return region.status();
  const Result<PlotPlan> plan = planPlot(job.settings, region.value(), job.dpi);
  if (!plan) return plan.status();
  PlotNotice notice(job);
  notice.begin(app.documentTitle(), job.target.path);
  app.frontEnd().progressBegin("Plotting", 0, 100);
  const Status status = plotPages(app, job, plan.value());
  app.frontEnd().progressEnd();
  notice.end(!status && status.message().empty());
  return status;
}

}  // namespace tarn::host
