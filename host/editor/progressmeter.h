// What showing progress costs the work that it tells of, and how far it lags behind.
#pragma once

#include <chrono>
#include <string>

namespace tarn::host {

/// Measures one operation from its start to its end.
class ProgressMeter {
 public:
  using Clock = std::chrono::steady_clock;

  /// The time that a call of the display takes, cancel questions included.
  class Call {
   public:
    explicit Call(ProgressMeter& meter);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    ProgressMeter& meter_;
    Clock::time_point start_;
    double worked_;
  };

  void begin(const std::string& label, int minimum, int maximum);
  void move(int position);
  /// One line of JSON: seconds of the operation, those in calls of the display and their share, the
  /// same of the processors (of all threads, and of this one in calls), the longest time without a
  /// new position, how far the last one was from the end. Empty when nothing has begun.
  std::string end();

 private:
  bool running_ = false;
  std::string label_;
  int minimum_ = 0;
  int maximum_ = 0;
  int position_ = 0;
  long moves_ = 0;
  Clock::time_point begun_;
  Clock::time_point moved_;
  double worked_ = 0;  ///< seconds of all threads before it began
  Clock::duration inCalls_{};
  double workedInCalls_ = 0;  ///< seconds of this thread
  Clock::duration longestGap_{};
};

}  // namespace tarn::host
