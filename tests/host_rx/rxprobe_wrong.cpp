// Libraries that are no modules for this host, each for one reason.
#include "rxregsvc.h"

#if defined(PROBE_NEWER)
extern "C" ACRX_MODULE_EXPORT int acrxGetApiVersion() {
  return ACRX_API_VERSION + 1;
}
#else
extern "C" ACRX_MODULE_EXPORT int acrxGetApiVersion() {
  return ACRX_API_VERSION;
}
#endif

#if defined(PROBE_NEEDSMORE)
void tarnProbeNobodyHasThis();
#endif

#if !defined(PROBE_NOENTRY)
extern "C" ACRX_MODULE_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode, void*) {
#if defined(PROBE_NEEDSMORE)
  tarnProbeNobodyHasThis();
#endif
  return AcRx::kRetOK;
}
#endif
