#include "host/editor/commandlineui.h"

#include <algorithm>

#include "afxwin.h"
#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/hostapp.h"
#include "host/editor/inputvalues.h"
#include "host/ui/menumodel.h"
#include "host/ui/uiservices.h"

namespace tarn::host {

namespace {

struct Button {
  const char* keyword;
  int id;
};

std::vector<Button> buttonsOf(unsigned type) {
  switch (type & 0xf) {
    case MB_OKCANCEL:
      return {{"OK", IDOK}, {"Cancel", IDCANCEL}};
    case MB_YESNO:
      return {{"Yes", IDYES}, {"No", IDNO}};
    case MB_YESNOCANCEL:
      return {{"Yes", IDYES}, {"No", IDNO}, {"Cancel", IDCANCEL}};
    default:
      return {{"OK", IDOK}};
  }
}

/// ".tif" of "*.tif", ".tif" or "tif".
std::string plainExtension(const std::string& given) {
  const size_t first = given.find_first_not_of("*.");
  return first == std::string::npos ? std::string() : "." + given.substr(first);
}

bool exists(const std::string& path) {
  return fileKind(path) == FileKind::kRegular;
}

/// The full path meant by a typed name; the default extension is added where the name has none.
std::string meantPath(const std::string& typed, const FileRequest& request) {
  std::string path = absolutePath(typed);
  if (!extensionOf(path).empty() || fileKind(path) != FileKind::kMissing) return path;
  return path + plainExtension(request.defaultExtension);
}

/// Why a name cannot be taken, or "".
std::string refusal(const std::string& path, const FileRequest& request) {
  const FileKind kind = fileKind(path);
  if (request.folder) return kind == FileKind::kFolder ? "" : path + ": there is no such folder.";
  if (kind == FileKind::kFolder) return path + ": this is a folder.";
  if (request.open && request.mustExist && kind == FileKind::kMissing) {
    return path + ": there is no such file.";
  }
  return {};
}

/// One line an item, sub-menus set in: "  1124 √ text".
void addLines(const MenuModel& menu, const std::string& indent, std::string& lines) {
  for (const MenuItem& item : menu.items) {
    const std::string text = toUtf8(item.text);
    if (item.sub) {
      lines += indent;
      lines += text + "\n";
      addLines(*item.sub, indent + "  ", lines);
    } else if (!text.empty()) {
      lines += indent;
      lines += std::to_string(item.id) + (item.checked ? " √ " : " ") + text + "\n";
    }
  }
}

}  // namespace

UINT CommandLineUi::popupMenu(const MenuModel& menu, POINT) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return 0;
  std::string lines = "\n";
  addLines(menu, "  ", lines);
  app->print(lines);
  for (;;) {
    const auto answer = app->commands().ask("Menu command (Enter: none): ", InputKind::kAnswer);
    if (!answer || answer->empty()) return 0;
    int id = 0;
    if (parseInt(*answer, id) && id > 0 && findItem(menu, static_cast<UINT>(id)) != nullptr) {
      return static_cast<UINT>(id);
    }
    app->print("\n" + *answer + ": this is not in the menu.\n");
  }
}

int CommandLineUi::messageBox(const std::string& text, const std::string&, unsigned type) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return refusingButton(type);
  const std::vector<Button> buttons = buttonsOf(type);
  if (buttons.size() == 1) {
    app->print("\n" + text + "\n");
    return buttons.front().id;
  }
  std::vector<std::string> keywords;
  keywords.reserve(buttons.size());
  for (const Button& button : buttons) keywords.emplace_back(button.keyword);
  return buttons[choose(text, keywords, 0)].id;
}

size_t CommandLineUi::choose(const std::string& question, const std::vector<std::string>& answers,
                             size_t standard) {
  HostApp* app = HostApp::instance();
  const size_t refusal = answers.size() - 1;
  if (app == nullptr) return refusal;
  app->print("\n" + question + "\n");
  std::string choices;
  for (const std::string& answer : answers) choices += (choices.empty() ? "" : "/") + answer;
  const std::string prompt = "[" + choices + "] <" + answers[standard] + ">: ";
  for (;;) {
    const auto typed = app->commands().ask(prompt, InputKind::kAnswer);
    if (!typed) return refusal;
    if (typed->empty()) return standard;
    const auto keyword = matchKeyword(*typed, answers);
    const auto found = std::find(answers.begin(), answers.end(), keyword.value_or(std::string()));
    if (found != answers.end()) return static_cast<size_t>(found - answers.begin());
    app->print("\nPlease answer " + choices + ".\n");
  }
}

std::optional<std::vector<std::string>> CommandLineUi::fileNames(const FileRequest& request) {
  HostApp* app = HostApp::instance();
  if (app == nullptr) return std::nullopt;
  const std::string prompt = request.several          ? "File name (Enter ends the list): "
                             : request.folder         ? "Folder: "
                             : !request.kinds.empty() ? "File name or [Version]: "
                                                      : "File name: ";
  std::vector<std::string> chosen;
  kind_.reset();
  for (;;) {
    const auto typed = app->commands().ask(prompt, InputKind::kFileName);
    if (!typed || typed->empty()) {
      if (chosen.empty()) return std::nullopt;
      return chosen;
    }
    if (!request.kinds.empty() && equalsIgnoreCase(std::string_view(*typed), "Version")) {
      kind_ = choose("Version of the file", request.kinds, kind_.value_or(request.kind));
      continue;
    }
    const std::string path = meantPath(*typed, request);
    const std::string reason = refusal(path, request);
    if (!reason.empty()) {
      app->print("\n" + reason + "\n");
      continue;
    }
    if (request.overwritePrompt && exists(path) &&
        messageBox(path + " exists. Replace it?", "", MB_YESNO) != IDYES) {
      continue;
    }
    chosen.push_back(path);
    if (!request.several) return chosen;
  }
}

}  // namespace tarn::host
