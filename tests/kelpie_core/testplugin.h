#pragma once

#include "inc/kobject.h"

class ITestObject : public kel::IObject {
 public:
  KEL_INTERFACE(ITestObject)
  virtual int answer() = 0;

 protected:
  ~ITestObject() = default;
};
