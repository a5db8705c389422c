// What is plotted: a layout and the settings in force.
#pragma once

#include "adesk.h"
#include "dbid.h"
#include "rxobject.h"

class ACADHOST_EXPORT AcPlPlotInfo : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcPlPlotInfo);

  void setLayout(const AcDbObjectId& layout) { layout_ = layout; }
  AcDbObjectId layout() const { return layout_; }

 private:
  AcDbObjectId layout_;
};
