#include "host/plot/plotplan.h"

#include <algorithm>
#include <cmath>

#include "host/plot/sheetframe.h"

namespace tarn::host {

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kMostPixels = 65000;

struct Box {
  double left = 0;
  double bottom = 0;
  double right = 0;
  double top = 0;
  bool isEmpty() const { return !(right > left) || !(top > bottom); }
};

/// Millimetres in the frame of the drawing to those of the sheet from its upper left corner.
PixelPoint onSheet(const PlotData& settings, double x, double y) {
  switch (settings.rotation) {
    case AcDbPlotSettings::k90degrees:
      return {settings.width - y, settings.height - x};
    case AcDbPlotSettings::k180degrees:
      return {settings.width - x, y};
    case AcDbPlotSettings::k270degrees:
      return {y, x};
    default:
      return {x, settings.height - y};
  }
}

/// Moves the view so that `pixel` becomes a whole one; the ground under it goes along.
ViewState onWholePixel(const ViewState& view, PixelPoint pixel) {
  return pannedBy(view, std::round(pixel.x) - pixel.x, std::round(pixel.y) - pixel.y);
}

/// The corner of a page rectangle that is the upper left one in the turned frame.
PixelPoint frameCorner(const QRectF& rect, double turn) {
  switch (std::lround(turn / 1.5707963267948966) & 3) {
    case 1:
      return {rect.left(), rect.bottom()};
    case 2:
      return {rect.right(), rect.bottom()};
    case 3:
      return {rect.right(), rect.top()};
    default:
      return {rect.left(), rect.top()};
  }
}

QRectF moved(const QRectF& rect, PixelPoint corner) {
  return rect.translated(std::round(corner.x) - corner.x, std::round(corner.y) - corner.y);
}

}  // namespace

PlotRegion regionAround(const GroundBox& box, double twist) {
  const double w = box.maxX - box.minX;
  const double h = box.maxY - box.minY;
  const double c = std::fabs(std::cos(twist));
  const double s = std::fabs(std::sin(twist));
  return {{box.minX + w / 2, box.minY + h / 2}, w * c + h * s, w * s + h * c, twist};
}

PlotRegion regionOfWindow(const PlotData& d, double twist) {
  const double x = (d.windowMinX + d.windowMaxX) / 2;
  const double y = (d.windowMinY + d.windowMaxY) / 2;
  const double c = std::cos(twist);
  const double s = std::sin(twist);
  return {{x * c + y * s, y * c - x * s},
          d.windowMaxX - d.windowMinX,
          d.windowMaxY - d.windowMinY,
          twist};
}

Result<PlotPlan> planPlot(const PlotData& settings, const PlotRegion& region, int dpi) {
  const SheetFrame frame = frameOf(settings);
  const Box inner{frame.left, frame.bottom, frame.width - frame.right, frame.height - frame.top};
  if (inner.isEmpty()) return Status::error("The margins leave nothing of the paper to print on.");
  if (!(region.width > 0) || !(region.height > 0) ||
      !std::isfinite(region.width + region.height + region.center.x + region.center.y)) {
    return Status::error("The area to plot is empty: choose another one.");
  }
  const double perMillimetre = dpi / kMillimetresPerInch;
  if (settings.width * perMillimetre > kMostPixels ||
      settings.height * perMillimetre > kMostPixels) {
    return Status::error("The paper has too many pixels at " + std::to_string(dpi) +
                         " dots per inch.");
  }
  const double innerWidth = inner.right - inner.left;
  const double innerHeight = inner.top - inner.bottom;
  const double units = settings.fit
                           ? std::max(region.width / innerWidth, region.height / innerHeight)
                           : unitsPerMillimetre(settings);
  const double width = region.width / units;
  const double height = region.height / units;
  const double left =
      inner.left + (settings.centered ? (innerWidth - width) / 2 : settings.originX);
  const double bottom =
      inner.bottom + (settings.centered ? (innerHeight - height) / 2 : settings.originY);
  const Box seen{std::max(left, inner.left), std::max(bottom, inner.bottom),
                 std::min(left + width, inner.right), std::min(bottom + height, inner.top)};
  if (seen.isEmpty())
    return Status::error(
        "The area to plot falls outside the paper: centre it, or choose another scale.");

  PlotPlan plan;
  plan.dpi = dpi;
  plan.lineWeights = settings.lineWeights;
  plan.paperWidth = settings.width;
  plan.paperHeight = settings.height;
  const auto pixel = [&](double x, double y) {
    const PixelPoint at = onSheet(settings, x, y);
    return PixelPoint{at.x * perMillimetre, at.y * perMillimetre};
  };
  ViewState page;
  page.pixelWidth = std::max(1, static_cast<int>(std::lround(settings.width * perMillimetre)));
  page.pixelHeight = std::max(1, static_cast<int>(std::lround(settings.height * perMillimetre)));
  page.height = units / perMillimetre * page.pixelHeight;
  page.twist = region.twist + rotationOf(settings);
  page = viewWithGroundAt(page, region.center, pixel(left + width / 2, bottom + height / 2));
  const PixelPoint a = pixel(seen.left, seen.bottom);
  const PixelPoint b = pixel(seen.right, seen.top);
  const QRectF clip(QPointF(std::min(a.x, b.x), std::min(a.y, b.y)),
                    QPointF(std::max(a.x, b.x), std::max(a.y, b.y)));
  const PixelPoint corner = frameCorner(clip, rotationOf(settings));
  plan.page = onWholePixel(page, corner);
  plan.clip = moved(clip, corner);
  return plan;
}

PlottedWindow plottedWindow(const PlotPlan& plan, const PaperWindow& window) {
  PlottedWindow plotted;
  plotted.clip = deviceRectOf(window, plan.page) & plan.clip;
  if (plotted.clip.isEmpty()) return plotted;
  const PixelPoint corner = frameCorner(plotted.clip, plan.page.twist);
  plotted.view = onWholePixel(throughWindow(window, plan.page), corner);
  return plotted;
}

}  // namespace tarn::host
