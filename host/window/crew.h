// Threads that stay between calls, so that what each of them keeps for itself (outlines of texts)
// is there the next time.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tarn::host {

class Crew {
 public:
  Crew() = default;
  ~Crew();
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  /// Runs work(0) on the caller's thread and each other one below `count` on a thread that is
  /// always the same; returns when all are done. `work` must not throw.
  void run(size_t count, const std::function<void(size_t)>& work);

 private:
  void serve(size_t index);

  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable begun_;
  std::condition_variable ended_;
  const std::function<void(size_t)>* work_ = nullptr;
  size_t count_ = 0;       ///< of the run that goes on
  size_t waitedFor_ = 0;   ///< threads that have not ended their part of it
  unsigned long run_ = 0;  ///< counts them, so that no thread takes part twice
  bool leaving_ = false;
};

}  // namespace tarn::host
