// Conversion of many images, one after the other; a bad one does not stop the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "components/convert/inputs.h"
#include "components/convert/options.h"

namespace tarn::convert {

enum class State { kWaiting, kRunning, kConverted, kCurrent, kSkipped, kFailed, kStopped };

/// "converted", "current" ...
const char* wordOf(State state);

struct ItemResult {
  State state = State::kWaiting;
  /// Where the output is.
  std::string output;
  uint64_t bytes = 0;
  double seconds = 0;
  /// Why it failed or was skipped; names the file.
  std::string message;
  /// Sentences about what was found, without the image's name.
  std::vector<std::string> notes;
};

/// Is told how it goes, on the thread that runs the batch.
class BatchObserver {
 public:
  BatchObserver() = default;
  virtual ~BatchObserver() = default;
  BatchObserver(const BatchObserver&) = delete;
  BatchObserver& operator=(const BatchObserver&) = delete;

  virtual void started(size_t item) = 0;
  /// The part done of this item, 0 to 1; several times a second. False stops the batch.
  virtual bool moved(size_t item, double part) = 0;
  virtual void finished(size_t item, const ItemResult& result) = 0;
};

struct Summary {
  size_t converted = 0;
  size_t current = 0;
  size_t skipped = 0;
  size_t failed = 0;
  size_t stopped = 0;
  double seconds = 0;

  /// "3 converted, 1 failed".
  std::string text() const;
};

/// Converts the items in their order. Once stopped, those that are left are reported as such.
Summary runBatch(const std::vector<Item>& items, const Options& options, BatchObserver& observer);

}  // namespace tarn::convert
