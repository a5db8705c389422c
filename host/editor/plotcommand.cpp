// PLOT: its prompts, and the way from the settings to the file.
#include <algorithm>
#include <functional>
#include <optional>

#include "acedads.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/inputvalues.h"
#include "host/editor/plotjob.h"
#include "host/editor/sysvars.h"
#include "host/plot/paper.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

/// A line; Enter gives `standard`. Nothing when cancelled.
std::optional<std::string> askLine(const std::string& prompt, const std::string& standard) {
  ACHAR typed[1025] = {0};
  const std::string text = "\n" + prompt + " <" + standard + ">: ";
  if (acedGetString(1, toWide(text).c_str(), typed, 1025) != RTNORM) return std::nullopt;
  const std::string line(trim(std::string_view(toUtf8(typed))));
  return line.empty() ? standard : line;
}

/// One of the keywords; Enter gives `standard`.
std::optional<std::string> askWord(const std::string& prompt, const std::string& keywords,
                                   const std::string& standard) {
  std::string shown = keywords;
  std::replace(shown.begin(), shown.end(), ' ', '/');
  acedInitGet(0, toWide(keywords).c_str());
  ACHAR word[513] = {0};
  const int answer =
      acedGetKword(toWide("\n" + prompt + " [" + shown + "] <" + standard + ">: ").c_str(), word);
  if (answer == RTNORM) return toUtf8(word);
  return answer == RTNONE ? std::optional<std::string>(standard) : std::nullopt;
}

std::optional<bool> askYes(const std::string& prompt, bool standard) {
  const auto word = askWord(prompt, "Yes No", standard ? "Yes" : "No");
  return word ? std::optional<bool>(*word == "Yes") : std::nullopt;
}

/// Asks until `take` accepts the line; "" of it accepts, anything else is printed.
bool askUntil(const std::string& prompt, const std::string& standard,
              const std::function<std::string(const std::string&)>& take) {
  for (;;) {
    const auto line = askLine(prompt, standard);
    if (!line) return false;
    const std::string fault = take(*line);
    if (fault.empty()) return true;
    app().print("\n" + fault + "\n");
  }
}

struct AreaName {
  const char* name;
  AcDbPlotSettings::PlotType type;
};
constexpr AreaName kAreas[] = {
    {"Display", AcDbPlotSettings::kDisplay}, {"Extents", AcDbPlotSettings::kExtents},
    {"Layout", AcDbPlotSettings::kLayout},   {"Limits", AcDbPlotSettings::kLimits},
    {"View", AcDbPlotSettings::kView},       {"Window", AcDbPlotSettings::kWindow},
};

bool askLayout(PlotJob& job) {
  AcDbDatabase& database = *app().documents().current().database();
  LayoutEntry chosen;
  const bool done = askUntil(
      "Layout name or ?", app().documents().current().space().tab().name,
      [&](const std::string& line) -> std::string {
        if (line == "?") {
          std::string all;
          for (const LayoutEntry& entry : layoutsOf(database)) all += " " + entry.name;
          return "Layouts:" + all;
        }
        chosen = layoutNamed(database, line);
        return chosen.id.isNull() ? "There is no layout \"" + line + "\"; ? lists them." : "";
      });
  if (done) job = defaultJob(app(), chosen);
  return done;
}

bool askDevice(PlotJob& job) {
  const auto device = askWord("Output device", "PDF PNG", "PDF");
  if (!device) return false;
  job.target.device = *device == "PDF" ? PlotDevice::kPdf : PlotDevice::kPng;
  nameAfterDevice(job.target);
  return true;
}

bool askPaper(PlotJob& job) {
  PlotData& s = job.settings;
  if (!askUntil("Paper size (A0 to A4, or WIDTHxHEIGHT in millimetres)", toUtf8(s.paper),
                [&](const std::string& line) { return setPaper(s, line); })) {
    return false;
  }
  const auto units = askWord("Paper units", "Inches Millimeters",
                             s.units == AcDbPlotSettings::kInches ? "Inches" : "Millimeters");
  if (!units) return false;
  s.units = *units == "Inches" ? AcDbPlotSettings::kInches : AcDbPlotSettings::kMillimeters;
  const auto orientation = askWord("Orientation of the paper", "Portrait Landscape",
                                   s.width > s.height ? "Landscape" : "Portrait");
  if (!orientation) return false;
  setLandscape(s, *orientation == "Landscape");
  const auto rotation = askWord("Rotation of the drawing on the paper", "0 90 180 270",
                                std::to_string(90 * s.rotation));
  if (!rotation) return false;
  s.rotation = static_cast<AcDbPlotSettings::PlotRotation>(std::stoi(*rotation) / 90);
  return true;
}

bool askWindow(PlotJob& job) {
  PlotData& settings = job.settings;
  ads_point a = {settings.windowMinX, settings.windowMinY, 0};
  ads_point b = {settings.windowMaxX, settings.windowMaxY, 0};
  if (acedGetPoint(nullptr, ACRX_T("\nLower left corner of the window: "), a) == RTCAN ||
      acedGetCorner(a, ACRX_T("\nUpper right corner: "), b) == RTCAN) {
    return false;
  }
  setWindow(settings, {a[0], a[1]}, {b[0], b[1]}, viewOfTab(app(), job.layout).twist);
  return true;
}

bool askArea(PlotJob& job) {
  const bool model = job.layout.isModel;
  PlotData& s = job.settings;
  std::string standard = "Display";
  for (const AreaName& area : kAreas) {
    if (area.type == s.type) standard = area.name;
  }
  const auto word = askWord(
      "Plot area",
      model ? "Display Extents Limits View Window" : "Display Extents Layout Limits View Window",
      standard);
  if (!word) return false;
  for (const AreaName& area : kAreas) {
    if (*word == area.name) s.type = area.type;
  }
  if (s.type == AcDbPlotSettings::kWindow) return askWindow(job);
  if (s.type != AcDbPlotSettings::kView) return true;
  const auto view = askLine("Name of the view", toUtf8(s.view));
  if (view) s.view = toWide(*view);
  return view.has_value();
}

bool askScale(PlotJob& job) {
  PlotData& s = job.settings;
  const bool fits = s.fit && s.type != AcDbPlotSettings::kLayout;
  const std::string now =
      fits ? "Fit" : formatDouble(s.numerator) + "=" + formatDouble(s.denominator);
  if (!askUntil("Scale (plotted units=drawing units) or Fit", now,
                [&](const std::string& line) { return setScale(s, line); })) {
    return false;
  }
  const std::string offset =
      s.centered ? "Center" : formatDouble(s.originX) + "," + formatDouble(s.originY);
  return askUntil("Offset on the paper in millimetres (x,y) or Center", offset,
                  [&](const std::string& line) { return setOffset(s, line); });
}

bool askResolution(PlotJob& job) {
  return askUntil("Resolution in dots per inch", std::to_string(job.dpi),
                  [&](const std::string& line) -> std::string {
                    int dpi = 0;
                    if (!parseInt(line, dpi) || dpi < kLowestDpi || dpi > kHighestDpi) {
                      return "The resolution is a number from " + std::to_string(kLowestDpi) +
                             " to " + std::to_string(kHighestDpi) + ".";
                    }
                    job.dpi = dpi;
                    return {};
                  });
}

bool askFile(PlotJob& job) {
  const auto file = askLine("File name", job.target.path);
  if (file) job.target.path = absolutePath(*file);
  return file.has_value();
}

void storeSettings(const PlotJob& job) {
  const AcDbObjectPointer<AcDbLayout> layout(job.layout.id, AcDb::kForWrite);
  if (layout.openStatus() == Acad::eOk) LayoutAccess::setData(*layout.object(), job.settings);
}

void run(const PlotJob& job) {
  if (job.keepsSettings) storeSettings(job);
  const Status status = runPlot(app(), job);
  if (status) return app().print("\n" + job.target.path + " written.\n");
  if (!status.message().empty()) return failCommand(app(), status.message());
  app().print("\n*Cancel*\n");
}

void plotByPrompts() {
  PlotJob job;
  const auto detailed = askYes("Detailed plot configuration?", false);
  if (!detailed || !askLayout(job) || !askDevice(job)) return;
  if (*detailed && !(askPaper(job) && askArea(job) && askScale(job) && askResolution(job))) return;
  if (!askFile(job)) return;
  const auto keeps = askYes("Save the settings with the layout?", false);
  const auto go = keeps ? askYes("Proceed with the plot?", true) : std::nullopt;
  if (!go) return;
  job.keepsSettings = *keeps;
  if (*go) return run(job);
  if (*keeps) storeSettings(job);
}

}  // namespace

void plotCommand() {
  if (app().variables().shortOf("CMDDIA") == 0) return plotByPrompts();
  PlotJob job = defaultJob(app(), app().documents().current().space().tab());
  for (;;) {
    switch (app().frontEnd().choosePlot(job)) {
      case PlotChoice::kByPrompts:
        return plotByPrompts();
      case PlotChoice::kPickWindow:
        if (askWindow(job)) job.settings.type = AcDbPlotSettings::kWindow;
        break;
      case PlotChoice::kPlot:
        return run(job);
      case PlotChoice::kCancel:
        return app().print("\n*Cancel*\n");
    }
  }
}

}  // namespace tarn::host
