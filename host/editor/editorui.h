// Decides who answers a box, a file dialog or a menu: names given beforehand, the command line
// (FILEDIA 0), or the program's own user interface.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/editor/commandlineui.h"
#include "host/ui/uibackend.h"

namespace tarn::host {

class HostApp;

class EditorUi : public UiBackend {
 public:
  EditorUi(HostApp& app, UiBackend& backend) : app_(app), backend_(backend) {}

  int messageBox(const std::string& text, const std::string& caption, unsigned type) override;
  size_t choose(const std::string& question, const std::vector<std::string>& answers,
                size_t standard) override;
  std::optional<std::vector<std::string>> fileNames(const FileRequest& request) override;
  std::optional<size_t> chosenKind() const override;
  UINT popupMenu(const MenuModel& menu, POINT screen) override;
  WindowSystem* windows() override { return backend_.windows(); }

  /// While a script plays the user, menus are asked on the command line.
  void playScript(bool playing) { playing_ = playing; }

  /// The next file dialog is answered with these names (one that takes a single file with the first
  /// of them), until forgetAnswers().
  void answerFilesWith(std::vector<std::string> files) { answers_ = std::move(files); }
  void forgetAnswers() { answers_.reset(); }
  bool hasAnswers() const { return answers_.has_value(); }

 private:
  std::vector<std::string> takeAnswers(const FileRequest& request);

  HostApp& app_;
  UiBackend& backend_;
  CommandLineUi commandLine_;
  std::optional<std::vector<std::string>> answers_;
  const UiBackend* asked_ = nullptr;  ///< who answered the last file dialog
  bool playing_ = false;
};

}  // namespace tarn::host
