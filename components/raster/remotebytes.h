// The bytes of an image that does not lie on this computer's disks, as the readers see them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/file.h"

namespace tarn::raster {

struct ByteRange {
  uint64_t offset = 0;
  uint64_t size = 0;
};

/// Every operation may be called from several threads at once.
class RemoteBytes : public RandomBytes {
 public:
  /// What messages call it; no path of this computer.
  virtual const std::string& name() const = 0;
  virtual uint64_t size() const = 0;
  /// Fetches ranges together, so that readAt() inside one of them need not wait as long as `held`
  /// lives. False when they cannot be had.
  virtual bool fetch(const std::vector<ByteRange>& ranges,
                     std::shared_ptr<const void>& held) const = 0;
};

}  // namespace tarn::raster
