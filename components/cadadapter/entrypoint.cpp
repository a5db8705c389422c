// adapter_autocad.arx: while it is loaded, the framework has the host's services.
#include "arxEntryPoint.h"
#include "components/cadadapter/cadadapter.h"
#include "components/cadadapter/serversettings.h"

class CadAdapterApp : public AcRxArxApp {
 public:
  AcRx::AppRetCode On_kInitAppMsg(void* packet) override {
    const AcRx::AppRetCode status = AcRxArxApp::On_kInitAppMsg(packet);
    kel::registerHostServices();
    kel::registerServerCommand();
    return status;
  }
  AcRx::AppRetCode On_kUnloadAppMsg(void* packet) override {
    kel::removeServerCommand();
    kel::unregisterHostServices();
    return AcRxArxApp::On_kUnloadAppMsg(packet);
  }
  void RegisterServerComponents() override {}
};

IMPLEMENT_ARX_ENTRYPOINT(CadAdapterApp)
