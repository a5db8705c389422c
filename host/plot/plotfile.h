// A planned plot as a file: PDF with lines as lines, or PNG. Whole or not at all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "adesk.h"
#include "base/result.h"
#include "host/graphics/renderer.h"
#include "host/plot/plotplan.h"

namespace tarn::host {

/// Entities on the page.
struct PlotLayer {
  /// Draws them into the scene when their turn has come; false gives up.
  std::function<bool(Scene&)> record;
  ViewState view;  ///< over the whole page
  QRectF clip;     ///< page pixels
};

enum class PlotDevice { kPdf, kPng };

struct PlotTarget {
  PlotDevice device = PlotDevice::kPdf;
  std::string path;
  std::string title;  ///< kept in the file
};

/// Why no plot can be written there, as far as that is known before it is made.
ACADHOST_EXPORT Status checkPlotTarget(const std::string& path);

/// Writes the layers in their order on white paper. `proceed` is asked for each layer and piece of
/// the file, and before the file takes its place; false gives up, and the status is an error
/// without a text. An earlier file of that name stays untouched unless everything went well. Errors
/// name the file.
ACADHOST_EXPORT Status writePlot(const PlotPlan& plan, const std::vector<PlotLayer>& layers,
                                 const PlotTarget& target, const RenderStyle& style,
                                 const std::function<bool()>& proceed);

}  // namespace tarn::host
