#include "imageclient/rangecache.h"

#include <algorithm>

namespace tarn::client {

RangeCache& RangeCache::shared() {
  static RangeCache instance;
  return instance;
}

void RangeCache::use(const PiecePtr& piece) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find(recent_.begin(), recent_.end(), piece);
  if (found != recent_.end()) {
    recent_.splice(recent_.begin(), recent_, found);
    return;
  }
  recent_.push_front(piece);
  bytes_ += piece->bytes.size();
  while (bytes_ > kLimit && !recent_.empty()) {
    bytes_ -= recent_.back()->bytes.size();
    recent_.pop_back();
  }
}

uint64_t RangeCache::bytes() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return bytes_;
}

}  // namespace tarn::client
