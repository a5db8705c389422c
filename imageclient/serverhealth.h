// Which images and servers are left alone for a while because they keep failing.
#pragma once

#include <chrono>
#include <string>

#include "imageclient/operation.h"
#include "imageclient/serveraddress.h"

namespace tarn::client {

/// Counts failures in a row; belongs to one thread. After a pause one more failure is enough for
/// the next.
class Breaker {
 public:
  using Clock = Operation::Clock;

  bool isOpen() const { return Clock::now() < until_; }
  void succeeded() {
    failures_ = 0;
    until_ = {};
  }
  /// `isLast`: no more failures are waited for.
  void failed(const ClientTimes& times, bool isLast = false) {
    failures_ = isLast ? times.failures : failures_ + 1;
    if (failures_ < times.failures) return;
    failures_ = times.failures - 1;
    until_ = Clock::now() + std::chrono::milliseconds(times.pause);
  }

 private:
  int failures_ = 0;
  Clock::time_point until_{};
};

/// What all images of a server have in common: one that does not answer is left alone as a whole,
/// so that a drawing with many of its images does not wait for each. Any thread may call.
void serverAnswered(const ServerPlace& place);
/// `isSilent`: a whole operation has passed without a word of it. Once is enough.
void serverFailed(const ServerPlace& place, const std::string& reason, const ClientTimes& times,
                  bool isSilent);
/// Why the server is left alone now; empty when it is not.
std::string serverPause(const ServerPlace& place);
/// Whether it has answered within the time for which servers are left alone.
bool hasAnsweredLately(const ServerPlace& place, const ClientTimes& times);

}  // namespace tarn::client
