// Brings up the window of a rectification. The program that has windows registers an implementation
// with the factory; the rectification component asks for it when it is to be shown.
#pragma once

#include "inc/kobject.h"

class IRectifyDialog;

class IRectifyDialogMaker : public kel::IObject {
 public:
  KEL_INTERFACE(IRectifyDialogMaker)

  /// Shows the dialog for the component's open image and returns at once. There is one dialog: it
  /// is given this component when it is open already. The dialog takes a count of the component.
  virtual void showDialog(IRectifyDialog* component, bool isModal) = 0;

 protected:
  ~IRectifyDialogMaker() = default;
};
