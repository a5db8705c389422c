// Plug-in loading. Objects are light: the list of loaded plug-ins is one for the process.
#pragma once

#include "inc/iappmanager.h"
#include "inc/kplugin.h"

namespace kel {

class AppManager final : public Implements<AppManager, IAppManager> {
 public:
  static constexpr const char* kName = "kelpie_core.AppManager";

  DString applicationFolder() override;
  int pluginCount() override;
  bool loadPlugins(const char* folder, int flags) override;
};

}  // namespace kel
