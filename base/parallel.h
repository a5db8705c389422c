// Work spread over threads that are all joined before the call returns.
#pragma once

#include <cstddef>
#include <functional>

namespace tarn {

/// Number of threads worth using here, at least 1.
unsigned workerCount();

/// Runs `work(i)` for every i in [0, count), on the caller's thread and up to workerCount() - 1
/// others, and returns when all are done. `work` must not throw.
void parallelFor(size_t count, const std::function<void(size_t)>& work);

}  // namespace tarn
