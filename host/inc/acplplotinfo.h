// What is plotted: a layout, the settings in force and the device. Nothing here is owned.
#pragma once

#include "adesk.h"
#include "dbid.h"
#include "rxobject.h"

class AcDbPlotSettings;
class AcPlPlotConfig;

class ACADHOST_EXPORT AcPlPlotInfo : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcPlPlotInfo);

  void setLayout(const AcDbObjectId& layout) { layout_ = layout; }
  AcDbObjectId layout() const { return layout_; }
  /// Settings in place of the layout's own; null when those are in force.
  void setOverrideSettings(const AcDbPlotSettings* settings) { settings_ = settings; }
  const AcDbPlotSettings* overrideSettings() const { return settings_; }
  void setDeviceOverride(const AcPlPlotConfig* config) { config_ = config; }
  const AcPlPlotConfig* deviceOverride() const { return config_; }

 private:
  AcDbObjectId layout_;
  const AcDbPlotSettings* settings_ = nullptr;
  const AcPlPlotConfig* config_ = nullptr;
};
