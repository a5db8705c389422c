// Work on a thread of its own, so that the caller can tell how far it has come and stop it.
#pragma once

#include <atomic>
#include <functional>

#include "base/result.h"
#include "components/raster/progress.h"

namespace tarn::convert {

/// What the work and the waiting caller share.
struct Waiting {
  std::atomic<double> part{0};
  std::atomic<bool> stop{false};
};

/// Runs `work` on another thread and returns its status when it is done. Meanwhile `progress` is
/// told Waiting::part on the caller's thread, several times a second; when it returns false, `stop`
/// is set and the work's own end waited for.
Status runWaiting(const std::function<Status(Waiting&)>& work, const raster::Progress& progress);

/// The part of `whole` between `from` and `to`, for one step of several.
raster::Progress stepOf(const raster::Progress& whole, double from, double to);

}  // namespace tarn::convert
