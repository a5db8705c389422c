// A progress display of the framework.
#pragma once

#include "inc/kobject.h"

class IProgressBar : public kel::IObject {
 public:
  KEL_INTERFACE(IProgressBar)

  virtual void setTitle(const char* title) = 0;
  virtual bool isRunning() = 0;
  /// Slot 6. Shows the display. `flag` is 0.
  virtual void start(const char* label, int minimum, int maximum, int flag) = 0;
  virtual void setLabel(const char* label) = 0;
  virtual void setRange(int minimum, int maximum) = 0;
  virtual int minimum() = 0;
  virtual int maximum() = 0;
  virtual int position() = 0;
  virtual void step(int count) = 0;
  virtual bool cancelWanted() = 0;
  /// Slot 14. Takes the display away.
  virtual void end() = 0;
  /// Slot 15.
  virtual void setPosition(int position) = 0;

 protected:
  ~IProgressBar() = default;
};
