// The framework's own management: where it lives, which plug-ins it has.
#pragma once

#include "inc/kobject.h"
#include "inc/kvalues.h"

class IAppManager : public kel::IObject {
 public:
  KEL_INTERFACE(IAppManager)

  /// Folder of libkelpie_core, to which a relative plug-in folder belongs.
  virtual kel::DString applicationFolder() = 0;
  virtual int pluginCount() = 0;
  /// The seventh operation. Loads every plug-in of the folder that is not loaded yet; true when
  /// none of them failed. `flags` is 0.
  virtual bool loadPlugins(const char* folder, int flags) = 0;

 protected:
  ~IAppManager() = default;
};
