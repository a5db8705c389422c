#include "host/plot/plotreactors.h"

#include <algorithm>

#include "acplplotconfig.h"
#include "acplplotinfo.h"
#include "acplplotreactor.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcPlPlotReactor, AcRxObject)
ACRX_CONS_DEFINE_MEMBERS(AcPlPlotInfo, AcRxObject, 1)
ACRX_CONS_DEFINE_MEMBERS(AcPlPlotConfig, AcRxObject, 1)

void AcPlPlotReactor::beginPlot() {}
void AcPlPlotReactor::beginDocument(AcPlPlotInfo&, const ACHAR*, Adesk::Int32, bool, const ACHAR*) {
}
void AcPlPlotReactor::beginPage(AcPlPlotInfo&) {}
void AcPlPlotReactor::endPage() {}
void AcPlPlotReactor::endDocument() {}
void AcPlPlotReactor::endPlot() {}
void AcPlPlotReactor::plotCancelled() {}

namespace tarn::host {

void PlotReactors::addReactor(AcPlPlotReactor* reactor) {
  if (reactor == nullptr) return;
  if (std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) {
    reactors_.push_back(reactor);
  }
}

void PlotReactors::removeReactor(AcPlPlotReactor* reactor) {
  reactors_.erase(std::remove(reactors_.begin(), reactors_.end(), reactor), reactors_.end());
}

PlotReactors& plotReactors() {
  // Never destroyed: reactors of modules may leave when the process ends.
  static auto* const reactors = new PlotReactors;
  return *reactors;
}

}  // namespace tarn::host

AcPlPlotReactorMgr* acplPlotReactorMgrPtr() {
  AcPlPlotReactor::rxInit();
  AcPlPlotInfo::rxInit();
  AcPlPlotConfig::rxInit();
  return &tarn::host::plotReactors();
}
