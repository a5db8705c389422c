// The framework's progress callback. Every operation is empty here; a class derived from it answers
// those that it wants. There is no cancellation.
#pragma once

#include "inc/kvalues.h"

class CallBackProgressBar {
 public:
  /// Slot 0. An operation begins: its label (UTF-8) and the range of its positions.
  virtual void start(const char* /*label*/, int /*minimum*/, int /*maximum*/) {}
  /// Slot 1.
  virtual ~CallBackProgressBar() = default;
  /// Slots 2 to 7, for the framework's own use.
  virtual void setRange(int /*minimum*/, int /*maximum*/) {}
  virtual void setLabel(const char* /*label*/) {}
  virtual void setMinimum(int /*minimum*/) {}
  virtual void setMaximum(int /*maximum*/) {}
  virtual void setStep(int /*step*/) {}
  virtual void setVisible(bool /*visible*/) {}
  /// Slot 8.
  virtual kel::DString text() { return {}; }
  /// Slot 9. The operation is over.
  virtual void end() {}
  /// Slot 10. The operation has come to a position of its range.
  virtual void setPosition(int /*position*/) {}
  /// Slot 11.
  virtual void setUserData(void* /*data*/) {}
};
