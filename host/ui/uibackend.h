// What message boxes, file dialogs, menus and windows need of the program around the host. The
// window answers with dialogs, the command line with lines of text; nothing above this interface
// knows which.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "afxtypes.h"

namespace tarn::host {

struct MenuModel;
class WindowSystem;

/// One request of a file dialog. Texts are UTF-8.
struct FileRequest {
  bool open = true;              ///< a file to read; false: a file to write
  bool several = false;          ///< several names may be chosen
  bool mustExist = true;         ///< names of missing files are refused
  bool folder = false;           ///< a folder is asked for, no file
  bool overwritePrompt = false;  ///< asks before an existing file is chosen for writing
  std::string title;
  std::string initialName;       ///< name shown at the start, may hold a folder
  std::string defaultExtension;  ///< ".tif", "tif" or "*.tif"; added to a name without one
  std::string filter;            ///< "text|*.tif;*.img|text|*.jpg||"
  /// Kinds of the file to write ("R2000 drawing"), in the place of a filter; none when there is
  /// nothing to choose from. `kind` is what is proposed.
  std::vector<std::string> kinds;
  size_t kind = 0;
};

class UiBackend {
 public:
  virtual ~UiBackend() = default;

  /// Shows `text` and returns the button pressed (IDOK 1, IDCANCEL 2, IDYES 6, IDNO 7). `type`
  /// holds the MB_ bits that say which buttons there are. Cancelled input gives the refusing
  /// button.
  virtual int messageBox(const std::string& text, const std::string& caption, unsigned type) = 0;

  /// Asks a question with answers of its own ("Save", "Discard" ...) and returns the index of the
  /// one chosen. `standard` is the answer of Enter; cancelled input gives the last.
  virtual size_t choose(const std::string& question, const std::vector<std::string>& answers,
                        size_t standard) = 0;

  /// Full paths in the order chosen; none when the user cancels.
  virtual std::optional<std::vector<std::string>> fileNames(const FileRequest& request) = 0;

  /// Of the last fileNames() with kinds: the one chosen; nothing when nobody chose.
  virtual std::optional<size_t> chosenKind() const { return std::nullopt; }

  /// Shows a menu at a place of the screen; the id of what was chosen, 0 for nothing.
  virtual UINT popupMenu(const MenuModel& /*menu*/, POINT /*screen*/) { return 0; }

  /// What shows windows; null when nothing does.
  virtual WindowSystem* windows() { return nullptr; }
};

}  // namespace tarn::host
