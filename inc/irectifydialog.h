// The rectification of one image: the component that computes it and brings up its dialog.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

class CallBackRectifyOperator;

class IRectifyDialog : public kel::IObject {
 public:
  KEL_INTERFACE(IRectifyDialog)

  virtual bool hasImage() = 0;
  /// Path of the open image; empty when there is none.
  virtual kel::DString imagePath() = 0;
  /// The seventh operation, the first of a run. `flags` is 0.
  virtual void prepare(int flags) = 0;
  /// The eighth. Opens the image; the callback must outlive the dialog. False when it cannot.
  virtual bool openImage(const kel::DString& path, CallBackRectifyOperator* callback) = 0;
  /// The ninth. 1 makes the dialog modal.
  virtual void setModal(int modal) = 0;
  /// The tenth. Shows the dialog and returns at once.
  virtual void show() = 0;

 protected:
  ~IRectifyDialog() = default;
};
