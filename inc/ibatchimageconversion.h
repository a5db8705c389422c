// Conversion of many images in one go, with a dialog of its own.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

class IBatchImageConversion : public kel::IObject {
 public:
  KEL_INTERFACE(IBatchImageConversion)

  /// Converts one image; false after a message.
  virtual bool convertImage(const kel::DString& source, const kel::DString& target) = 0;
  /// Builds the pyramid of one image; false after a message.
  virtual bool buildPyramid(const kel::DString& image) = 0;
  /// How many images the last run has converted.
  virtual int convertedCount() = 0;
  /// The eighth operation. Asks for the images and converts them; returns when the user is done.
  virtual void run() = 0;

 protected:
  ~IBatchImageConversion() = default;
};
