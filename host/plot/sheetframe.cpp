#include "host/plot/sheetframe.h"

#include <utility>

namespace tarn::host {

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kHalfPi = 1.5707963267948966;

/// The frame after the drawing was turned by one right angle counter-clockwise on the sheet.
SheetFrame turned(const SheetFrame& f) {
  return {f.height, f.width, f.bottom, f.right, f.top, f.left};
}

}  // namespace

double rotationOf(const PlotData& settings) {
  return kHalfPi * settings.rotation;
}

SheetFrame frameOf(const PlotData& settings) {
  SheetFrame frame{settings.width,  settings.height, settings.left,
                   settings.bottom, settings.right,  settings.top};
  for (int i = 0; i < settings.rotation; ++i) frame = turned(frame);
  return frame;
}

double unitsPerMillimetre(const PlotData& settings) {
  const bool valid = settings.numerator > 0 && settings.denominator > 0;
  const double perUnit = valid ? settings.denominator / settings.numerator : 1;
  return settings.units == AcDbPlotSettings::kInches ? perUnit / kMillimetresPerInch : perUnit;
}

GroundBox paperBoxOf(const PlotData& settings) {
  const SheetFrame f = frameOf(settings);
  const double k = unitsPerMillimetre(settings);
  return {-f.left * k, -f.bottom * k, (f.width - f.left) * k, (f.height - f.bottom) * k};
}

GroundBox printableBoxOf(const PlotData& settings) {
  const SheetFrame f = frameOf(settings);
  const double k = unitsPerMillimetre(settings);
  return {0, 0, (f.width - f.left - f.right) * k, (f.height - f.bottom - f.top) * k};
}

}  // namespace tarn::host
