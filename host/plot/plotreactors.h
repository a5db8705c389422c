// The list of plot reactors.
#pragma once

#include <vector>

#include "acplplotreactormgr.h"

namespace tarn::host {

class PlotReactors : public AcPlPlotReactorMgr {
 public:
  void addReactor(AcPlPlotReactor* reactor) override;
  void removeReactor(AcPlPlotReactor* reactor) override;
  const std::vector<AcPlPlotReactor*>& all() const { return reactors_; }

 private:
  std::vector<AcPlPlotReactor*> reactors_;
};

/// The one list, behind acplPlotReactorMgrPtr().
ACADHOST_EXPORT PlotReactors& plotReactors();

}  // namespace tarn::host
