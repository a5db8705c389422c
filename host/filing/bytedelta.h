// What differs between two byte strings, kept small: undo keeps one for each change of an object.
#pragma once

#include <cstddef>
#include <vector>

#include "adesk.h"
#include "host/database/objectstate.h"

namespace tarn::host {

/// Positions are compared one by one, so that a list that grew at its end costs only what was
/// added, whatever its length.
class ACADHOST_EXPORT ByteDelta {
 public:
  ByteDelta() = default;
  static ByteDelta between(const Bytes& before, const Bytes& after);

  bool isEmpty() const { return runs_.empty() && before_.empty() && after_.empty(); }
  /// Turns `after` into `before` or the other way round. False, with nothing changed, when `bytes`
  /// are not what they were.
  bool backward(Bytes& bytes) const { return apply(bytes, after_, before_); }
  bool forward(Bytes& bytes) const { return apply(bytes, before_, after_); }

 private:
  struct Run {
    size_t at;
    size_t length;
  };
  bool apply(Bytes& bytes, const Bytes& from, const Bytes& to) const;

  size_t common_ = 0;      ///< length of the shorter string
  std::vector<Run> runs_;  ///< differing places inside the common length
  Bytes before_, after_;   ///< contents of the runs, then what lies past the common length
};

}  // namespace tarn::host
