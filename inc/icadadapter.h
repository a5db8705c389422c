// The bridge between the framework and the CAD host.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

class ICadAdapter : public kel::IObject {
 public:
  KEL_INTERFACE(ICadAdapter)

  /// Makes the adapter ready: the services of the host are at the factory, the framework's plug-ins
  /// are loaded. Fine when it is ready already.
  virtual void prepareAdapter() = 0;
  // What framework components may ask of the host and its current drawing.
  virtual kel::DString hostName() = 0;
  virtual kel::DString hostVersion() = 0;
  virtual bool hasDocument() = 0;
  virtual kel::DString documentName() = 0;
  virtual kel::DString documentPath() = 0;
  virtual bool isModelSpace() = 0;
  virtual void printMessage(const kel::DString& text) = 0;
  virtual void sendCommand(const kel::DString& text) = 0;
  virtual bool findFile(const kel::DString& name, kel::DString& path) = 0;
  virtual kel::Variant systemVariable(const kel::DString& name) = 0;
  virtual bool setSystemVariable(const kel::DString& name, const kel::Variant& value) = 0;
  virtual void viewCenter(double& x, double& y) = 0;
  virtual double viewHeight() = 0;
  virtual double viewTwist() = 0;
  virtual void screenSize(int& width, int& height) = 0;
  virtual void regenerate() = 0;
  virtual void beginProgress(const kel::DString& label, int minimum, int maximum) = 0;
  virtual void moveProgress(int position) = 0;
  virtual void endProgress() = 0;
  virtual bool moduleState(const kel::DString& module) = 0;
  /// 21 slots after prepareAdapter. Notes that a module is in use.
  virtual void setModuleState(const kel::DString& module, bool active) = 0;

 protected:
  ~ICadAdapter() = default;
};
