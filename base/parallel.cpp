#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace tarn {

unsigned workerCount() {
  return std::max(1U, std::thread::hardware_concurrency());
}

void parallelFor(size_t count, const std::function<void(size_t)>& work) {
  std::atomic<size_t> next{0};
  const auto run = [&] {
    for (size_t i = next++; i < count; i = next++) work(i);
  };
  const size_t others = std::min<size_t>(count, workerCount());
  std::vector<std::thread> threads;
  for (size_t i = 1; i < others; ++i) threads.emplace_back(run);
  run();
  for (std::thread& thread : threads) thread.join();
}

}  // namespace tarn
