// Plot settings as a value.
#pragma once

#include <string>

#include "dbplotsettings.h"

namespace tarn::host {

/// What AcDbPlotSettings holds; see there for units. The sheet starts as A3, lying.
struct PlotData {
  std::wstring settingsName;
  std::wstring device;
  std::wstring paper = L"A3";
  double width = 420;
  double height = 297;
  double left = 5;  ///< margins
  double bottom = 5;
  double right = 5;
  double top = 5;
  AcDbPlotSettings::PlotType type = AcDbPlotSettings::kLayout;
  double windowMinX = 0;
  double windowMinY = 0;
  double windowMaxX = 0;
  double windowMaxY = 0;
  std::wstring view;
  AcDbPlotSettings::PlotPaperUnits units = AcDbPlotSettings::kMillimeters;
  AcDbPlotSettings::PlotRotation rotation = AcDbPlotSettings::k0degrees;
  bool centered = false;
  double originX = 0;
  double originY = 0;
  bool fit = false;
  double numerator = 1;
  double denominator = 1;
  bool model = false;
  bool lineWeights = true;  ///< lines are as wide as their weight says

  /// What is on the screen, as large as fits: how a model without settings of its own is plotted.
  void showDisplay() {
    type = AcDbPlotSettings::kDisplay;
    fit = true;
    centered = true;
  }
};

}  // namespace tarn::host
