#include "host/filing/bytedelta.h"

#include <algorithm>

namespace tarn::host {

namespace {

/// Runs nearer to each other than this become one; each run costs two numbers.
constexpr size_t kJoin = 16;

}  // namespace

ByteDelta ByteDelta::between(const Bytes& before, const Bytes& after) {
  ByteDelta delta;
  delta.common_ = std::min(before.size(), after.size());
  for (size_t at = 0; at < delta.common_; ++at) {
    if (before[at] == after[at]) continue;
    if (!delta.runs_.empty() && at < delta.runs_.back().at + delta.runs_.back().length + kJoin) {
      delta.runs_.back().length = at + 1 - delta.runs_.back().at;
    } else {
      delta.runs_.push_back({at, 1});
    }
  }
  const auto keep = [&](const Bytes& from, Bytes& to) {
    for (const Run& run : delta.runs_) {
      const auto start = from.begin() + static_cast<std::ptrdiff_t>(run.at);
      to.insert(to.end(), start, start + static_cast<std::ptrdiff_t>(run.length));
    }
    to.insert(to.end(), from.begin() + static_cast<std::ptrdiff_t>(delta.common_), from.end());
    to.shrink_to_fit();
  };
  keep(before, delta.before_);
  keep(after, delta.after_);
  return delta;
}

bool ByteDelta::apply(Bytes& bytes, const Bytes& from, const Bytes& to) const {
  size_t inRuns = 0;
  for (const Run& run : runs_) inRuns += run.length;
  if (bytes.size() != common_ + (from.size() - inRuns)) return false;
  size_t at = 0;
  for (const Run& run : runs_) {
    const auto start = from.begin() + static_cast<std::ptrdiff_t>(at);
    if (!std::equal(start, start + static_cast<std::ptrdiff_t>(run.length),
                    bytes.begin() + static_cast<std::ptrdiff_t>(run.at))) {
      return false;
    }
    at += run.length;
  }
  if (!std::equal(from.begin() + static_cast<std::ptrdiff_t>(at), from.end(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(common_))) {
    return false;
  }
  bytes.resize(common_);
  at = 0;
  for (const Run& run : runs_) {
    std::copy_n(to.begin() + static_cast<std::ptrdiff_t>(at), run.length,
                bytes.begin() + static_cast<std::ptrdiff_t>(run.at));
    at += run.length;
  }
  bytes.insert(bytes.end(), to.begin() + static_cast<std::ptrdiff_t>(at), to.end());
  return true;
}

}  // namespace tarn::host
