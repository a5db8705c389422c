#include "_image/inputwatch.h"

#include "_image/binding/usesite.h"
#include "_image/moduleglobals.h"
#include "_image/reactors.h"
#include "acutads.h"
#include "base/text.h"

namespace tarn::image {
namespace {

constexpr const char* kViewChangeMessage = "tarn_image.viewchange";

bool isPanRunning() {
  resbuf names{};
  if (acedGetVar(L"CMDNAMES", &names) != RTNORM || names.restype != RTSTR) return false;
  const bool isPan = equalsIgnoreCase(names.resval.rstring, L"pan");
  acutDelString(names.resval.rstring);
  return isPan;
}

}  // namespace

void watchMessage(const MSG* message) {
  if (!message || g_refresh.plotting) return;
  switch (message->message) {
    case WM_LBUTTONUP:
      if (!isPanRunning()) break;
      redrawImagesLocked();
      g_refresh.suspendRefresh = true;
      break;
    case WM_MOUSEWHEEL:
      g_refresh.suspendRefresh = false;
      break;
    case WM_MBUTTONDOWN:
      g_refresh.suspendRefresh = true;
      break;
    case WM_MBUTTONUP:
      redrawImagesLocked();
      g_refresh.suspendRefresh = true;
      break;
    default:
      break;
  }
}

}  // namespace tarn::image

AsdkInputPointMonitor::AsdkInputPointMonitor() {
  const auto router = tarn::image::makeObject<IMessageRouter>(tarn::image::kInputMonitorSite);
  if (!router.isNull()) router->addReceiver(tarn::image::kViewChangeMessage, this);
}

AsdkInputPointMonitor::~AsdkInputPointMonitor() {
  const auto router = tarn::image::makeObject<IMessageRouter>(tarn::image::kInputMonitorSite);
  if (!router.isNull()) router->removeReceiver(this);
}

Acad::ErrorStatus AsdkInputPointMonitor::monitorInputPoint(
    const AcEdInputPoint& /*input*/, AcEdInputPointMonitorResult& /*output*/) {
  return Acad::eOk;
}

void AsdkInputPointMonitor::messageReceived(const kel::DString& /*message*/,
                                            const kel::Variant& /*value*/) {
  tarn::image::redrawImagesLocked();
}
