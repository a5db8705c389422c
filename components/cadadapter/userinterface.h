// The user interface service for components, by the host's public functions: the same code serves
// the window and the command line.
#pragma once

#include "inc/iuserinterface.h"
#include "inc/kplugin.h"

namespace kel {

class UserInterface final : public Implements<UserInterface, IUserInterface> {
 public:
  static constexpr const char* kName = "adapter_autocad.UserInterface";

  void message(const DString& text) override;
  bool question(const DString& text) override;
  StringList askFiles(const DString& title, const DString& filter, bool severalAllowed) override;
  int choose(const DString& title, const StringList& choices) override;
  void beginProgress(const DString& label, int minimum, int maximum) override;
  void moveProgress(int position) override;
  void endProgress() override;
  bool cancelWanted() override;
  DString folder(Folder which) override;
  void count(const char* counter, long long amount) override;
  bool askForm(Form& form) override;
  void beginTasks(const DString& title, const StringList& tasks) override;
  void setTask(int task, TaskState state, const DString& text) override;
  void endTasks(const DString& report) override;
  StringList chooseFromListing(const Listing& listing) override;
  bool filesGiven() override;
};

}  // namespace kel
