// The device that is plotted on.
#pragma once

#include "adesk.h"
#include "rxobject.h"

class ACADHOST_EXPORT AcPlPlotConfig : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcPlPlotConfig);

  /// Dots per inch that it plots with.
  unsigned int maxDeviceDPI() const { return dpi_; }
  const ACHAR* deviceName() const { return device_; }

  void setMaxDeviceDPI(unsigned int dpi) { dpi_ = dpi; }
  /// `device` must outlive the object.
  void setDeviceName(const ACHAR* device) { device_ = device; }

 private:
  unsigned int dpi_ = 300;
  const ACHAR* device_ = ACRX_T("");
};
