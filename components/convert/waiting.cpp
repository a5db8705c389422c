#include "components/convert/waiting.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tarn::convert {

Status runWaiting(const std::function<Status(Waiting&)>& work, const raster::Progress& progress) {
  constexpr std::chrono::milliseconds kInterval(100);
  Waiting shared;
  Status result;
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  std::thread worker([&] {
    const Status status = work(shared);
    const std::lock_guard<std::mutex> lock(mutex);
    result = status;
    done = true;
    changed.notify_one();
  });
  std::unique_lock<std::mutex> lock(mutex);
  while (!changed.wait_for(lock, kInterval, [&] { return done; })) {
    lock.unlock();
    if (progress && !progress(shared.part)) shared.stop = true;
    lock.lock();
  }
  lock.unlock();
  worker.join();
  return result;
}

raster::Progress stepOf(const raster::Progress& whole, double from, double to) {
  if (!whole) return nullptr;
  return [whole, from, to](double part) { return whole(from + (to - from) * part); };
}

}  // namespace tarn::convert
