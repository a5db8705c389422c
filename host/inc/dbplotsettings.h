// Plot settings: paper, area, scale and rotation of a plot.
#pragma once

#include <memory>

#include "dbmain.h"

namespace tarn::host {
struct PlotData;
class LayoutAccess;
}  // namespace tarn::host

/// Paper sizes, margins and the origin are millimetres of the sheet as it lies in the device,
/// before the rotation. Texts stay valid until the object is changed.
class ACADHOST_EXPORT AcDbPlotSettings : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPlotSettings);
  enum PlotPaperUnits { kInches = 0, kMillimeters = 1, kPixels = 2 };
  /// Counter-clockwise turn of the drawing on the sheet.
  enum PlotRotation { k0degrees = 0, k90degrees = 1, k180degrees = 2, k270degrees = 3 };
  enum PlotType { kDisplay = 0, kExtents = 1, kLimits = 2, kView = 3, kWindow = 4, kLayout = 5 };

  AcDbPlotSettings();
  ~AcDbPlotSettings() override;

  Acad::ErrorStatus getPlotSettingsName(const ACHAR*& name) const;
  Acad::ErrorStatus setPlotSettingsName(const ACHAR* name);
  Acad::ErrorStatus getPlotCfgName(const ACHAR*& device) const;
  Acad::ErrorStatus getCanonicalMediaName(const ACHAR*& paper) const;
  void getPlotPaperSize(double& width, double& height) const;
  void getPlotPaperMargins(double& left, double& bottom, double& right, double& top) const;
  void getPlotOrigin(double& x, double& y) const;
  /// Corners of the plotted window in coordinates along the screen (the world turned by the twist).
  void getPlotWindowArea(double& minX, double& minY, double& maxX, double& maxY) const;
  void getPlotViewName(const ACHAR*& view) const;
  PlotPaperUnits plotPaperUnits() const;
  PlotRotation plotRotation() const;
  PlotType plotType() const;
  bool plotCentered() const;
  /// True when the scale is "fit to paper".
  bool useStandardScale() const;
  /// Paper units of the numerator are drawing units of the denominator.
  void getCustomPrintScale(double& numerator, double& denominator) const;
  /// Lines are as wide as their weight says.
  bool printLineweights() const;
  /// True for the settings of the model, false for those of a sheet.
  bool modelType() const;

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  friend class tarn::host::LayoutAccess;
  std::unique_ptr<tarn::host::PlotData> data_;
};
