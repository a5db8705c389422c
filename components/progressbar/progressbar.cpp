// The framework's progress display, shown by the user interface service.
#include <string>

#include "inc/iprogressbar.h"
#include "inc/iuserinterface.h"
#include "inc/kplugin.h"

namespace kel {
namespace {

class ProgressBar final : public Implements<ProgressBar, IProgressBar> {
 public:
  static constexpr const char* kName = "progressbar.ProgressBar";

  ProgressBar() : interface_("N", "components/progressbar", __LINE__) {}
  ~ProgressBar() { ProgressBar::end(); }

  void setTitle(const char* title) override {
    title_ = title ? title : "";
    show();
  }
  bool isRunning() override { return running_; }

  void start(const char* label, int minimum, int maximum, int /*flag*/) override {
    label_ = label ? label : "";
    minimum_ = minimum;
    maximum_ = maximum;
    position_ = minimum;
    running_ = true;
    show();
  }

  void setLabel(const char* label) override {
    label_ = label ? label : "";
    show();
  }

  void setRange(int minimum, int maximum) override {
    minimum_ = minimum;
    maximum_ = maximum;
    show();
  }

  int minimum() override { return minimum_; }
  int maximum() override { return maximum_; }
  int position() override { return position_; }
  void step(int count) override { setPosition(position_ + count); }
  bool cancelWanted() override { return !interface_.isNull() && interface_->cancelWanted(); }

  void end() override {
    if (running_ && !interface_.isNull()) interface_->endProgress();
    running_ = false;
  }

  void setPosition(int position) override {
    position_ = position;
    if (running_ && !interface_.isNull()) interface_->moveProgress(position);
  }

 private:
  /// Begins the display anew with what is known now; nothing before start and after end.
  void show() {
    if (!running_ || interface_.isNull()) return;
    const std::string separator = title_.empty() || label_.empty() ? "" : ": ";
    interface_->beginProgress(title_ + separator + label_, minimum_, maximum_);
    if (position_ != minimum_) interface_->moveProgress(position_);
  }

  Object<IUserInterface> interface_;
  std::string title_;
  std::string label_;
  int minimum_ = 0;
  int maximum_ = 100;
  int position_ = 0;
  bool running_ = false;
};

}  // namespace
}  // namespace kel

extern "C" KEL_PLUGIN_API void kelRegisterPlugin() {
  kel::ProgressBar::registerSelf();
}
