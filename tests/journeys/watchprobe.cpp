// A module for the journeys: says on the command line which window messages reach a watcher, and
// what the host shows at that moment.
#include "aced.h"
#include "acedads.h"
#include "acutads.h"
#include "afxwin.h"
#include "arxEntryPoint.h"
#include "rxmfcapi.h"

namespace {

void watch(const MSG* message) {
  resbuf size{};
  resbuf center{};
  acedGetVar(L"VIEWSIZE", &size);
  acedGetVar(L"VIEWCTR", &center);
  acutPrintf(L"\nmessage %04x size %.17g centre %.17g,%.17g\n", message->message, size.resval.rreal,
             center.resval.rpoint[0], center.resval.rpoint[1]);
}

}  // namespace

class ProbeApp : public AcRxArxApp {
 public:
  AcRx::AppRetCode On_kInitAppMsg(void* packet) override {
    acedRegisterWatchWinMsg(&watch);
    return AcRxArxApp::On_kInitAppMsg(packet);
  }
  AcRx::AppRetCode On_kUnloadAppMsg(void* packet) override {
    acedRemoveWatchWinMsg(&watch);
    return AcRxArxApp::On_kUnloadAppMsg(packet);
  }
  void RegisterServerComponents() override {}
};

IMPLEMENT_ARX_ENTRYPOINT(ProbeApp)
