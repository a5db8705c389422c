// Which images are left alone for a while because they keep failing.
#pragma once

#include <chrono>

#include "imageclient/operation.h"

namespace tarn::client {

/// Counts failures in a row of one image; belongs to one thread.
class Breaker {
 public:
  using Clock = Operation::Clock;

  bool isOpen() const { return Clock::now() < until_; }
  void succeeded() { failures_ = 0; }
  void failed(const ClientTimes& times) {
    if (++failures_ < times.failures) return;
    failures_ = 0;
    until_ = Clock::now() + std::chrono::milliseconds(times.pause);
  }

 private:
  int failures_ = 0;
  Clock::time_point until_{};
};

}  // namespace tarn::client
