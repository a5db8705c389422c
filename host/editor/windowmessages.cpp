#include "host/editor/windowmessages.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "host/editor/hostapp.h"
#include "rxmfcapi.h"

namespace tarn::host {

namespace {

std::vector<AcedWatchWinMsgFn>& watchers() {
  static std::vector<AcedWatchWinMsgFn> all;
  return all;
}

/// Nearest whole pixel edge, kept inside 32 bits.
LONG pixelEdge(double position) {
  constexpr double kLimit = 2147483647.0;
  if (!std::isfinite(position)) return 0;
  return static_cast<LONG>(std::clamp(std::floor(position + 0.5), -kLimit, kLimit));
}

}  // namespace

void tellWatchers(const MSG& message) {
  const auto all = watchers();
  for (const AcedWatchWinMsgFn watcher : all) watcher(&message);
}

}  // namespace tarn::host

using tarn::host::HostApp;

BOOL acedRegisterWatchWinMsg(const AcedWatchWinMsgFn watcher) {
  if (watcher == nullptr) return FALSE;
  auto& all = tarn::host::watchers();
  if (std::find(all.begin(), all.end(), watcher) == all.end()) all.push_back(watcher);
  return TRUE;
}

BOOL acedRemoveWatchWinMsg(const AcedWatchWinMsgFn watcher) {
  auto& all = tarn::host::watchers();
  const auto found = std::find(all.begin(), all.end(), watcher);
  if (found == all.end()) return FALSE;
  all.erase(found);
  return TRUE;
}

BOOL acedCoordFromPixelToWorld(int, CPoint pixel, ads_point world) {
  const HostApp* app = HostApp::instance();
  if (app == nullptr) return FALSE;
  const tarn::host::GroundPoint ground = tarn::host::groundFromPixel(
      app->view(), {static_cast<double>(pixel.x), static_cast<double>(pixel.y)});
  world[0] = ground.x;
  world[1] = ground.y;
  world[2] = 0;
  return TRUE;
}

void acedCoordFromPixelToWorld(const CPoint& pixel, ads_point world) {
  acedCoordFromPixelToWorld(0, pixel, world);
}

BOOL acedCoordFromWorldToPixel(int, const ads_point world, CPoint& pixel) {
  const HostApp* app = HostApp::instance();
  if (app == nullptr) return FALSE;
  const tarn::host::PixelPoint at = tarn::host::pixelFromGround(app->view(), {world[0], world[1]});
  pixel.x = tarn::host::pixelEdge(at.x);
  pixel.y = tarn::host::pixelEdge(at.y);
  return TRUE;
}
