// Fetched pieces of files, one cache a process, bounded in bytes.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace tarn::client {

/// Bytes of a file from `offset` on.
struct Piece {
  uint64_t offset = 0;
  std::string bytes;

  bool covers(uint64_t at, uint64_t size) const {
    return at >= offset && size <= bytes.size() && at - offset <= bytes.size() - size;
  }
};
using PiecePtr = std::shared_ptr<const Piece>;

/// Keeps the pieces used last alive; who wants one longer holds it. Any thread may call.
class RangeCache {
 public:
  static constexpr uint64_t kLimit = 32 << 20;

  static RangeCache& shared();

  /// Counts as used now; a piece that is not kept yet is from now on.
  void use(const PiecePtr& piece);
  uint64_t bytes() const;

 private:
  mutable std::mutex mutex_;
  std::list<PiecePtr> recent_;
  uint64_t bytes_ = 0;
};

}  // namespace tarn::client
