// Message boxes and file dialogs as lines of the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adesk.h"
#include "host/ui/uibackend.h"

namespace tarn::host {

/// Uses HostApp::instance() at each call; answers as cancelled when there is none.
class ACADHOST_EXPORT CommandLineUi : public UiBackend {
 public:
  /// Prints the text; a box with a choice asks for the button ("Yes", "No" ...; Enter takes the
  /// first).
  int messageBox(const std::string& text, const std::string& caption, unsigned type) override;

  size_t choose(const std::string& question, const std::vector<std::string>& answers,
                size_t standard) override;

  /// Asks for names, one a line; an empty line ends a choice of several. The name of a missing file
  /// is reported and asked for again. When the input ends, the names given so far hold. Where a
  /// file has kinds, "Version" in the place of a name asks for one.
  std::optional<std::vector<std::string>> fileNames(const FileRequest& request) override;

  std::optional<size_t> chosenKind() const override { return kind_; }

  /// Prints the items with their numbers and asks for one; Enter takes none.
  UINT popupMenu(const MenuModel& menu, POINT screen) override;

 private:
  std::optional<size_t> kind_;
};

}  // namespace tarn::host
