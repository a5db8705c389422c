// The command UICLICK: what a user does with a dialog, done by a script.
#include <utility>
#include <vector>

#include "adui.h"
#include "afxcmn.h"
#include "afxctrls.h"
#include "base/file.h"
#include "base/text.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/inputvalues.h"
#include "host/ui/windowinput.h"
#include "host/ui/windowviews.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

/// Menus are asked on the command line while one lives.
class Playing {
 public:
  Playing() { app().playScript(true); }
  ~Playing() { app().playScript(false); }
  Playing(const Playing&) = delete;
  Playing& operator=(const Playing&) = delete;
};

std::optional<int> askNumber(const std::string& prompt) {
  const auto typed = app().commands().ask(prompt, InputKind::kToken);
  int number = 0;
  if (!typed) return std::nullopt;
  if (parseInt(*typed, number)) return number;
  failCommand(app(), "\"" + *typed + "\": a number is needed.");
  return std::nullopt;
}

TreeNode* findNode(TreeNode& top, const std::wstring& text) {
  for (const auto& child : top.children) {
    if (child->text == text) return child.get();
    if (TreeNode* inside = findNode(*child, text)) return inside;
  }
  return nullptr;
}

/// The item of that text, or "#1", "#2" ... the row in sight.
TreeNode* itemOf(CTreeCtrl& tree, const std::string& text) {
  int row = 0;
  if (text.size() > 1 && text.front() == '#' && parseInt(text.substr(1), row)) {
    const std::vector<TreeNode*> rows = tree.model().rows();
    return row >= 1 && row <= static_cast<int>(rows.size()) ? rows[static_cast<size_t>(row) - 1]
                                                            : nullptr;
  }
  return findNode(tree.model().root(), toWide(text));
}

struct Action {
  const char* keyword;
  Gesture gesture;
  TreePart part;
  TreeModel::Choice choice;
};

constexpr Action kActions[] = {
    {"Click", Gesture::kClick, TreePart::kLabel, TreeModel::Choice::kOnly},
    {"Add", Gesture::kClick, TreePart::kLabel, TreeModel::Choice::kToggle},
    {"Extend", Gesture::kClick, TreePart::kLabel, TreeModel::Choice::kExtend},
    {"CHeck", Gesture::kClick, TreePart::kCheck, TreeModel::Choice::kOnly},
    {"Double", Gesture::kDoubleClick, TreePart::kLabel, TreeModel::Choice::kOnly},
    {"Right", Gesture::kRightClick, TreePart::kLabel, TreeModel::Choice::kOnly},
};

void noItem(const std::string& text) {
  failCommand(app(), "\"" + text + "\": there is no such item.");
}

void actOnTree(CTreeCtrl& tree, const Action& action, const std::string& text) {
  TreeView* view = treeViewOf(tree);
  TreeNode* node = itemOf(tree, text);
  if (!view) return failCommand(app(), "The tree is not there yet.");
  if (!node && !text.empty()) return noItem(text);
  // Nothing named: the empty space below all items.
  POINT at = {4, 1 << 20};
  if (node) {
    for (TreeNode* above = node->parent; above; above = above->parent) above->expanded = true;
    at = view->pointOf(*node, action.part);
  }
  if (action.gesture == Gesture::kDoubleClick && node) {
    treeGesture(tree, Gesture::kClick, at, action.choice);
  }
  treeGesture(tree, action.gesture, at, action.choice);
}

void actOnList(CCheckListBox& list, const Action& action, const std::string& text) {
  int row = text.empty() ? -1 : list.GetCount();
  CString each;
  for (int i = 0; i < list.GetCount() && row >= list.GetCount(); ++i) {
    list.GetText(i, each);
    if (toUtf8(each.GetString()) == text) row = i;
  }
  if (row >= list.GetCount()) return noItem(text);
  listGesture(list, action.gesture, row);
}

/// The dialog's control with items; null after a message.
CWnd* askControl(const CWnd& dialog) {
  const auto id = askNumber("Control: ");
  CWnd* control = id ? dialog.GetDlgItem(*id) : nullptr;
  if (id && !control) failCommand(app(), std::to_string(*id) + ": there is no such control.");
  return control;
}

void gesture(const CWnd& dialog, const Action& action) {
  CWnd* control = askControl(dialog);
  if (!control) return;
  const auto item = app().commands().ask("Item: ", InputKind::kText);
  if (!item) return;
  const Playing playing;
  if (auto* tree = dynamic_cast<CTreeCtrl*>(control)) {
    actOnTree(*tree, action, *item);
  } else if (auto* list = dynamic_cast<CCheckListBox*>(control)) {
    actOnList(*list, action, *item);
  } else {
    noItem(*item);
  }
}

void printNodes(const TreeNode& node, const std::string& indent, std::string& lines) {
  for (const auto& child : node.children) {
    lines += indent + (child->checked ? "[x] " : "[ ] ") + toUtf8(child->text) +
             (child->selected ? " *" : "") + "\n";
    printNodes(*child, indent + "  ", lines);
  }
}

void printItems(const CWnd& dialog) {
  const CWnd* control = askControl(dialog);
  std::string lines = "\n";
  if (const auto* tree = dynamic_cast<const CTreeCtrl*>(control)) {
    printNodes(const_cast<CTreeCtrl*>(tree)->model().root(), "", lines);
  } else if (const auto* list = dynamic_cast<const CCheckListBox*>(control)) {
    CString text;
    for (int i = 0; i < list->GetCount(); ++i) {
      list->GetText(i, text);
      lines += (list->GetCheck(i) != 0 ? "[x] " : "[ ] ") + toUtf8(text.GetString()) + "\n";
    }
  }
  app().print(lines);
}

void printTip(const CWnd& dialog) {
  auto* tree = dynamic_cast<CTreeCtrl*>(askControl(dialog));
  if (!tree) return;
  const auto item = app().commands().ask("Item: ", InputKind::kText);
  if (!item) return;
  TreeNode* node = itemOf(*tree, *item);
  if (!node) return noItem(*item);
  app().print("\n" + toUtf8(treeTip(*tree, *node)) + "\n");
}

/// Screen points on the parts of an item, for whoever moves a real mouse.
void printPlace(const CWnd& dialog) {
  auto* tree = dynamic_cast<CTreeCtrl*>(askControl(dialog));
  TreeView* view = tree ? treeViewOf(*tree) : nullptr;
  if (!view) return;
  const auto item = app().commands().ask("Item: ", InputKind::kText);
  if (!item) return;
  const TreeNode* node = itemOf(*tree, *item);
  if (!node) return noItem(*item);
  std::string line = "\n";
  for (const auto& [name, part] :
       {std::pair("box ", TreePart::kCheck), std::pair(" label ", TreePart::kLabel)}) {
    POINT at = view->pointOf(*node, part);
    tree->ClientToScreen(&at);
    line += name + std::to_string(at.x) + "," + std::to_string(at.y);
  }
  app().print(line + "\n");
}

void drop(CWnd& dialog) {
  std::vector<std::string> files;
  for (;;) {
    const auto name = app().commands().ask("File (Enter ends the list): ", InputKind::kFileName);
    if (!name || name->empty()) break;
    files.push_back(absolutePath(*name));
  }
  const Playing playing;
  if (!files.empty()) dropFiles(dialog, files);
}

/// What is no gesture on an item. False: another keyword.
bool actOnDialog(CWnd& dialog, const std::string& keyword) {
  if (keyword == "COmmand") {
    const auto id = askNumber("Command or button: ");
    const Playing playing;
    if (id) dialog.SendMessage(WM_COMMAND, MAKEWPARAM(static_cast<UINT>(*id), BN_CLICKED));
  } else if (keyword == "Key") {
    const auto key = askNumber("Key: ");
    if (!key) return true;
    const bool taken = takesKey(dialog, static_cast<WPARAM>(*key));
    app().print(taken ? "\nThe dialog has taken the key.\n" : "\nThe key goes on.\n");
  } else if (keyword == "BAr" || keyword == "CLose") {
    auto* bar = dynamic_cast<CAdUiDockControlBar*>(dialog.GetParent());
    const Playing playing;
    if (!bar) {
      failCommand(app(), "The dialog stands in no bar.");
    } else if (keyword == "BAr") {
      showBarMenu(*bar);
    } else {
      bar->ShowWindow(SW_HIDE);
    }
  } else if (keyword == "DRop") {
    drop(dialog);
  } else if (keyword == "List") {
    printItems(dialog);
  } else if (keyword == "Tip") {
    printTip(dialog);
  } else if (keyword == "Where") {
    printPlace(dialog);
  } else {
    return false;
  }
  return true;
}

}  // namespace

void uiclickCommand() {
  const auto id = askNumber("\nDialog: ");
  if (!id) return;
  CWnd* dialog = dialogOf(*id);
  if (!dialog) return failCommand(app(), std::to_string(*id) + ": this dialog is not open.");
  std::vector<std::string> keywords = {"COmmand", "Key",  "BAr", "CLose",
                                       "DRop",    "List", "Tip", "Where"};
  for (const Action& action : kActions) keywords.emplace_back(action.keyword);
  const auto typed = app().commands().ask(
      "Action [Click/Add/Extend/CHeck/Double/Right/COmmand/Key/BAr/CLose/DRop/List/Tip/Where]: ",
      InputKind::kToken);
  if (!typed) return;
  const auto keyword = matchKeyword(*typed, keywords);
  if (!keyword) return failCommand(app(), "\"" + *typed + "\" is no action.");
  if (actOnDialog(*dialog, *keyword)) return;
  for (const Action& action : kActions) {
    if (*keyword == action.keyword) gesture(*dialog, action);
  }
}

}  // namespace tarn::host
