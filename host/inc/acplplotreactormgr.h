// The list of plot reactors. They are not owned.
#pragma once

#include "adesk.h"

class AcPlPlotReactor;

class ACADHOST_EXPORT AcPlPlotReactorMgr {
 public:
  virtual ~AcPlPlotReactorMgr() = default;
  virtual void addReactor(AcPlPlotReactor* reactor) = 0;
  virtual void removeReactor(AcPlPlotReactor* reactor) = 0;
};

ACADHOST_EXPORT AcPlPlotReactorMgr* acplPlotReactorMgrPtr();
