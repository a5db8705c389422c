// The bridge to the host, by its public functions.
#pragma once

#include "inc/icadadapter.h"
#include "inc/kplugin.h"

namespace kel {

/// Registers the host's services with the factory and loads the framework's plug-ins. May be called
/// again: what is there already stays.
void registerHostServices();
/// Takes the services out of the factory; objects already made stay usable.
void unregisterHostServices();

class CadAdapter final : public Implements<CadAdapter, ICadAdapter> {
 public:
  static constexpr const char* kName = "adapter_autocad.CadAdapter";

  void prepareAdapter() override;
  DString hostName() override;
  DString hostVersion() override;
  bool hasDocument() override;
  DString documentName() override;
  DString documentPath() override;
  bool isModelSpace() override;
  void printMessage(const DString& text) override;
  void sendCommand(const DString& text) override;
  bool findFile(const DString& name, DString& path) override;
  Variant systemVariable(const DString& name) override;
  bool setSystemVariable(const DString& name, const Variant& value) override;
  void viewCenter(double& x, double& y) override;
  double viewHeight() override;
  double viewTwist() override;
  void screenSize(int& width, int& height) override;
  void regenerate() override;
  void beginProgress(const DString& label, int minimum, int maximum) override;
  void moveProgress(int position) override;
  void endProgress() override;
  bool moduleState(const DString& module) override;
  void setModuleState(const DString& module, bool active) override;
};

}  // namespace kel
