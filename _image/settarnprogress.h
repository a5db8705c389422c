// Progress of framework operations: through the framework's own display, or in the status bar.
#pragma once

#include "inc/callbackprogressbar.h"
#include "inc/iprogressbar.h"

/// Hands every notification on to a progress display of the framework.
class setTarnProgress : public CallBackProgressBar {
 public:
  setTarnProgress();
  ~setTarnProgress() override;

  void start(const char* label, int minimum, int maximum) override;
  void end() override;
  void setPosition(int position) override;

 private:
  kel::Object<IProgressBar> m_progress;
};

/// Shows progress in the host's status bar, once its own start operation has been called.
class CCADImageConversionProBar : public CallBackProgressBar {
 public:
  ~CCADImageConversionProBar() override;

  void end() override;
  void setPosition(int position) override;
  /// Slot 12. Shows the meter; the label is UTF-8.
  // Deliberate: the framework's own start (slot 0) shows nothing.
  virtual void startMeter(const char* label, int minimum, int maximum);
  /// Slot 13.
  virtual void setMeterData(void* data);
};
