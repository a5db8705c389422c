// A running host without a window whose inputs are the lines given and whose transcript is kept.
#pragma once

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "accmd.h"
#include "base/text.h"
#include "host/editor/commandlineui.h"
#include "host/editor/hostapp.h"
#include "host/editor/sysvars.h"
#include "host/headless/headlessfrontend.h"

namespace tarn::host {

class ScriptedHost {
 public:
  explicit ScriptedHost(const std::string& profile = "")
      : front_(transcript_, false), app_(front_, ui_, profile) {
    app_.variables().set("FILEDIA", short{0});
  }
  ~ScriptedHost() { acedRegCmds->removeGroup(kGroup); }

  /// Runs the lines and gives what the host printed meanwhile.
  std::string run(std::initializer_list<const char*> lines) {
    return runLines({lines.begin(), lines.end()});
  }
  std::string runLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) front_.addLine(line);
    transcript_.str("");
    good_ = front_.run(app_);
    return transcript_.str();
  }
  /// A line for the next run().
  void add(const std::string& line) { front_.addLine(line); }
  static bool hasCommand(const std::string& name) {
    return acedRegCmds->lookupTyped(toWide(name).c_str()) != nullptr;
  }
  /// Whether the last run() had no failed command.
  bool good() const { return good_; }
  HostApp& app() { return app_; }

  static void addCommand(const ACHAR* name, void (*function)(), int flags = ACRX_CMD_MODAL) {
    acedRegCmds->addCommand(kGroup, name, name, flags, function);
  }

 private:
  static constexpr const ACHAR* kGroup = ACRX_T("TEST");
  std::ostringstream transcript_;
  HeadlessFrontEnd front_;
  CommandLineUi ui_;
  HostApp app_;
  bool good_ = false;
};

}  // namespace tarn::host
