// A user interface service that notes what it is asked, for tests of components.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "inc/iuserinterface.h"
#include "inc/kplugin.h"

namespace tarn::test {

/// What every RecordingInterface shares; reset it at the start of a test.
struct Recorded {
  std::vector<std::string> messages;
  std::vector<std::string> progress;
  std::vector<std::string> tasks;
  std::map<std::string, long long> counters;
  /// Fills in forms; without it they are cancelled.
  std::function<bool(kel::Form&)> answer;
  /// Chooses from listings; without it they are cancelled.
  std::function<kel::StringList(const kel::Listing&)> choose;
  std::string folder;
  bool cancel = false;
  /// Asked in place of `cancel` when it is there.
  std::function<bool()> wantsToStop;
};

inline Recorded& recorded() {
  static Recorded instance;
  return instance;
}

class RecordingInterface final : public kel::Implements<RecordingInterface, IUserInterface> {
 public:
  static constexpr const char* kName = "test.RecordingInterface";

  void message(const kel::DString& text) override { recorded().messages.push_back(text.str()); }
  bool question(const kel::DString&) override { return false; }
  kel::StringList askFiles(const kel::DString&, const kel::DString&, bool) override { return {}; }
  int choose(const kel::DString&, const kel::StringList&) override { return -1; }
  void beginProgress(const kel::DString& label, int minimum, int maximum) override {
    recorded().progress.push_back("begin " + label.str() + " " + std::to_string(minimum) + " " +
                                  std::to_string(maximum));
  }
  void moveProgress(int position) override {
    recorded().progress.push_back("move " + std::to_string(position));
  }
  void endProgress() override { recorded().progress.emplace_back("end"); }
  bool cancelWanted() override {
    return recorded().wantsToStop ? recorded().wantsToStop() : recorded().cancel;
  }
  kel::DString folder(Folder) override { return recorded().folder; }
  void count(const char* counter, long long amount) override {
    // Images are read by several threads at once.
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    recorded().counters[counter] += amount;
  }
  bool askForm(kel::Form& form) override { return recorded().answer && recorded().answer(form); }
  void beginTasks(const kel::DString& title, const kel::StringList& tasks) override {
    recorded().tasks = {title.str() + " " + std::to_string(tasks.size())};
  }
  void setTask(int task, kel::TaskState state, const kel::DString& text) override {
    recorded().tasks.push_back(std::to_string(task) + " " +
                               std::to_string(static_cast<int>(state)) + " " + text.str());
  }
  void endTasks(const kel::DString& report) override { recorded().tasks.push_back(report.str()); }
  kel::StringList chooseFromListing(const kel::Listing& listing) override {
    return recorded().choose ? recorded().choose(listing) : kel::StringList();
  }
  bool filesGiven() override { return false; }
};

}  // namespace tarn::test
