#include "host/editor/editorui.h"

#include <utility>

#include "base/file.h"
#include "host/editor/hostapp.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

int EditorUi::messageBox(const std::string& text, const std::string& caption, unsigned type) {
  return backend_.messageBox(text, caption, type);
}

size_t EditorUi::choose(const std::string& question, const std::vector<std::string>& answers,
                        size_t standard) {
  UiBackend& asked = app_.variables().shortOf("FILEDIA") == 0 ? commandLine_ : backend_;
  return asked.choose(question, answers, standard);
}

std::vector<std::string> EditorUi::takeAnswers(const FileRequest& request) {
  std::vector<std::string> taken;
  const std::vector<std::string> names = std::exchange(answers_, std::nullopt).value_or(taken);
  for (const std::string& name : names) {
    const std::string path = absolutePath(name);
    const FileKind kind = fileKind(path);
    if (request.open && kind == FileKind::kMissing) {
      app_.print("\n" + path + ": there is no such file.\n");
    } else if (kind == FileKind::kFolder && !request.folder) {
      app_.print("\n" + path + ": this is a folder.\n");
    } else {
      taken.push_back(path);
    }
    if (!request.several && !taken.empty()) break;
  }
  return taken;
}

std::optional<std::vector<std::string>> EditorUi::fileNames(const FileRequest& request) {
  asked_ = nullptr;
  if (answers_) {
    std::vector<std::string> names = takeAnswers(request);
    if (names.empty()) return std::nullopt;
    return names;
  }
  UiBackend& asked = app_.variables().shortOf("FILEDIA") == 0 ? commandLine_ : backend_;
  asked_ = &asked;
  return asked.fileNames(request);
}

std::optional<size_t> EditorUi::chosenKind() const {
  return asked_ != nullptr ? asked_->chosenKind() : std::nullopt;
}

UINT EditorUi::popupMenu(const MenuModel& menu, POINT screen) {
  return playing_ ? commandLine_.popupMenu(menu, screen) : backend_.popupMenu(menu, screen);
}

}  // namespace tarn::host
