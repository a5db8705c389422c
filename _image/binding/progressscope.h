// The framework's progress callback for the time of one long operation.
#pragma once

#include "inc/kcore.h"

class CallBackProgressBar;

namespace tarn::image {

/// Installs `callback` while it lives; the callback must outlive it. One at a time: a scope inside
/// another replaces the outer callback for good.
class ProgressScope {
 public:
  explicit ProgressScope(CallBackProgressBar* callback) { kel::Core::setProgressBar(callback); }
  ~ProgressScope() { kel::Core::setProgressBar(nullptr); }
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;
};

}  // namespace tarn::image
