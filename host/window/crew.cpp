#include "host/window/crew.h"

namespace tarn::host {

Crew::~Crew() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    leaving_ = true;
  }
  begun_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void Crew::run(size_t count, const std::function<void(size_t)>& work) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    work_ = &work;
    count_ = count;
    waitedFor_ = count > 0 ? count - 1 : 0;
    ++run_;
  }
  while (threads_.size() + 1 < count) {
    threads_.emplace_back([this, index = threads_.size() + 1] { serve(index); });
  }
  begun_.notify_all();
  if (count > 0) work(0);
  std::unique_lock<std::mutex> lock(mutex_);
  ended_.wait(lock, [this] { return waitedFor_ == 0; });
  work_ = nullptr;
}

void Crew::serve(size_t index) {
  unsigned long done = 0;
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    begun_.wait(lock, [&] { return leaving_ || (work_ != nullptr && run_ != done); });
    if (leaving_) return;
    done = run_;
    if (index >= count_) continue;
    const std::function<void(size_t)>& work = *work_;
    lock.unlock();
    work(index);
    lock.lock();
    if (--waitedFor_ == 0) ended_.notify_one();
  }
}

}  // namespace tarn::host
