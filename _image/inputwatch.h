// What the module sees of raw input: mouse messages before the host handles them, the points under
// the cursor, and the framework's word that the view has changed.
#pragma once

#include "aced.h"
#include "afxwin.h"
#include "inc/imessagerouter.h"

namespace tarn::image {

/// The watcher that the host calls for every message; it takes none away.
void watchMessage(const MSG* message);

}  // namespace tarn::image

/// Receives "tarn_image.viewchange" from the framework while it lives, and redraws then.
class AsdkInputPointMonitor : public AcEdInputPointMonitor, public CallBackMessageRouter {
 public:
  AsdkInputPointMonitor();
  ~AsdkInputPointMonitor() override;
  AsdkInputPointMonitor(const AsdkInputPointMonitor&) = delete;
  AsdkInputPointMonitor& operator=(const AsdkInputPointMonitor&) = delete;

  // Deliberate: points are of no interest.
  Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input,
                                      AcEdInputPointMonitorResult& output) override;
  void messageReceived(const kel::DString& message, const kel::Variant& value) override;
};
