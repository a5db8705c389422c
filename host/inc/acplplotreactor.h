// Told about plots.
#pragma once

#include "adesk.h"
#include "rxobject.h"

class AcPlPlotInfo;

class ACADHOST_EXPORT AcPlPlotReactor : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcPlPlotReactor);

  virtual void beginPlot();
  virtual void beginDocument(AcPlPlotInfo& plotInfo, const ACHAR* documentName, Adesk::Int32 copies,
                             bool plotToFile, const ACHAR* fileName);
  virtual void beginPage(AcPlPlotInfo& plotInfo);
  virtual void endPage();
  virtual void endDocument();
  virtual void endPlot();
  virtual void plotCancelled();
};
