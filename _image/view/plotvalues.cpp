#include "_image/view/plotvalues.h"

#include <algorithm>
#include <cmath>

namespace tarn::image {
namespace {

constexpr double kMillimetresPerInch = 25.4;

struct Span {
  double from = 0;
  double to = 0;
  double length() const { return to - from; }
  double middle() const { return from + (to - from) / 2; }
};

Span both(const Span& a, const Span& b) {
  return {std::max(a.from, b.from), std::min(a.to, b.to)};
}

/// The area's part between spans that are counted from its centre along the axes of its view.
PlotValues partOf(const PlotArea& area, const Span& along, const Span& up, double pixelsPerUnit) {
  if (!(along.length() > 0) || !(up.length() > 0) || !std::isfinite(pixelsPerUnit)) return {};
  const double c = std::cos(area.twist);
  const double s = std::sin(area.twist);
  const double x = along.middle();
  const double y = up.middle();
  return {area.centerX + x * c + y * s,
          area.centerY + y * c - x * s,
          along.length(),
          up.length(),
          pixelsPerUnit,
          area.twist};
}

/// The sheet as the drawing on it lies.
PlotPaper turned(PlotPaper paper) {
  for (int i = 0; i < paper.rotation; ++i) {
    const PlotPaper p = paper;
    paper.width = p.height;
    paper.height = p.width;
    paper.left = p.bottom;
    paper.bottom = p.right;
    paper.right = p.top;
    paper.top = p.left;
  }
  return paper;
}

/// Where an axis of the area lies between the margins, in drawing units from the area's centre.
Span visible(double inner, double origin, bool isCentered, double unitsPerMillimetre,
             double length) {
  const double whole = length / unitsPerMillimetre;
  const double from = isCentered ? (inner - whole) / 2 : origin;
  const double start = std::max(0.0, from) - from;
  const double end = std::min(inner, from + whole) - from;
  return {start * unitsPerMillimetre - length / 2, end * unitsPerMillimetre - length / 2};
}

}  // namespace

PlotArea areaAround(const GroundRect& box, double twist) {
  const double w = box.maxX - box.minX;
  const double h = box.maxY - box.minY;
  const double c = std::fabs(std::cos(twist));
  const double s = std::fabs(std::sin(twist));
  return {box.minX + w / 2, box.minY + h / 2, w * c + h * s, w * s + h * c, twist};
}

PlotValues plotValuesOf(const PlotPaper& sheet, const PlotArea& area) {
  const PlotPaper paper = turned(sheet);
  const double innerWidth = paper.width - paper.left - paper.right;
  const double innerHeight = paper.height - paper.bottom - paper.top;
  const double unit = paper.isInches ? kMillimetresPerInch : 1.0;
  const double units = paper.fits ? std::max(area.width / innerWidth, area.height / innerHeight)
                                  : paper.denominator / paper.numerator / unit;
  if (!(innerWidth > 0) || !(innerHeight > 0) || !(units > 0)) return {};
  return partOf(area, visible(innerWidth, paper.originX, paper.isCentered, units, area.width),
                visible(innerHeight, paper.originY, paper.isCentered, units, area.height),
                paper.dotsPerInch / kMillimetresPerInch / units);
}

PlotValues plotValuesThrough(const PlotValues& sheet, const PlotViewport& viewport) {
  const double scale = viewport.viewHeight / viewport.height;
  const auto seen = [&](double sheetMiddle, double sheetLength, double middle, double length) {
    const Span here = both({sheetMiddle - sheetLength / 2, sheetMiddle + sheetLength / 2},
                           {middle - length / 2, middle + length / 2});
    return Span{(here.from - middle) * scale, (here.to - middle) * scale};
  };
  const PlotArea area{viewport.viewCenterX, viewport.viewCenterY, viewport.width * scale,
                      viewport.viewHeight, viewport.twist};
  return partOf(area, seen(sheet[0], sheet[2], viewport.centerX, viewport.width),
                seen(sheet[1], sheet[3], viewport.centerY, viewport.height), sheet[4] / scale);
}

std::optional<ViewState> plottedView(const PlotValues& values) {
  const auto [x, y, width, height, perUnit, twist] = values;
  if (!(width > 0) || !(height > 0) || !(perUnit > 0)) return std::nullopt;
  ViewState view;
  view.twist = twist;
  // Rounding must not take away the last column.
  view.pixelWidth = truncateToInt(std::ceil(width * perUnit)) + 1;
  view.pixelHeight = truncateToInt(std::ceil(height * perUnit)) + 1;
  view.transform.scale(perUnit, -perUnit);
  view.transform.rotateRadians(twist);
  view.transform.translate(-x, -y);
  const double c = std::fabs(std::cos(twist));
  const double s = std::fabs(std::sin(twist));
  const double reachX = (width * c + height * s) / 2;
  const double reachY = (width * s + height * c) / 2;
  view.viewRect = {x - reachX, y - reachY, x + reachX, y + reachY};
  view.fetchRect = view.viewRect;
  view.nominalRect = view.viewRect;
  return view;
}

ViewState coarserView(const ViewState& view, double factor) {
  ViewState coarser = view;
  coarser.transform = view.transform * QTransform::fromScale(factor, factor);
  coarser.pixelWidth = truncateToInt(std::ceil(view.pixelWidth * factor));
  coarser.pixelHeight = truncateToInt(std::ceil(view.pixelHeight * factor));
  return coarser;
}

}  // namespace tarn::image
