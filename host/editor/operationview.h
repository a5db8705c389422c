// What a front end shows of forms and long operations, when it has windows for them.
#pragma once

#include <string>
#include <vector>

#include "tarnform.h"
#include "tarnlisting.h"

namespace tarn::host {

/// Called on the main thread. The functions of tarnform.h in their window form.
class OperationView {
 public:
  OperationView() = default;
  virtual ~OperationView() = default;
  OperationView(const OperationView&) = delete;
  OperationView& operator=(const OperationView&) = delete;

  virtual bool askForm(TarnForm& form) = 0;
  virtual std::vector<std::string> chooseFromListing(const TarnListing& listing) = 0;
  virtual void beginTasks(const std::string& title, const std::vector<std::string>& tasks) = 0;
  virtual void setTask(size_t task, TarnTaskState state, const std::string& text) = 0;
  virtual void endTasks(const std::string& report) = 0;
  virtual void beginProgress(const std::string& label, int minimum, int maximum) = 0;
  virtual void moveProgress(int position) = 0;
  virtual void endProgress() = 0;
};

}  // namespace tarn::host
