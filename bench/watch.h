// Times of one piece of work: what passed, and what the processors worked.
#pragma once

#include <chrono>
#include <ctime>

namespace tarn::bench {

struct Took {
  double passed = 0;  ///< milliseconds
  double worked = 0;  ///< of all threads
};

class Watch {
 public:
  Took took() const {
    return {std::chrono::duration<double, std::milli>(Clock::now() - start_).count(),
            1000.0 * static_cast<double>(std::clock() - work_) / CLOCKS_PER_SEC};
  }

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point start_ = Clock::now();
  std::clock_t work_ = std::clock();
};

}  // namespace tarn::bench
