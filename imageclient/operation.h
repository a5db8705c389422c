// One operation of the image client: how long it may take, and whether the user wants it to end.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "imageclient/clienttimes.h"

namespace tarn::client {

/// Belongs to the thread that makes it; others may ask it, too.
class Operation {
 public:
  using Clock = std::chrono::steady_clock;

  Operation(const ClientTimes& times, std::function<bool()> cancelWanted)
      : times_(times),
        end_(Clock::now() + std::chrono::milliseconds(times.operation)),
        cancelWanted_(std::move(cancelWanted)) {}

  const ClientTimes& times() const { return times_; }
  /// Milliseconds that are left, 0 when it is over.
  int left() const {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - Clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
  }
  /// Asks the user's side, on the operation's own thread only: the user interface lives there.
  bool isCancelled() {
    if (cancelled_ || !cancelWanted_ || std::this_thread::get_id() != owner_) return cancelled_;
    // The user interface may have more to do than to answer.
    const auto now = Clock::now();
    if (now < nextQuestion_) return false;
    cancelled_ = cancelWanted_();
    nextQuestion_ = now + std::chrono::milliseconds(30);
    return cancelled_;
  }

 private:
  ClientTimes times_;
  Clock::time_point end_;
  std::function<bool()> cancelWanted_;
  std::thread::id owner_ = std::this_thread::get_id();
  Clock::time_point nextQuestion_{};
  std::atomic<bool> cancelled_{false};
};

}  // namespace tarn::client
