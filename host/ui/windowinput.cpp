#include "host/ui/windowinput.h"

#include <algorithm>

#include "afxcmn.h"
#include "afxctrls.h"
#include "base/text.h"

namespace tarn::host {

namespace {

constexpr int kLongestTip = 4096;

/// The parent's answer to a notification that begins with an NMHDR.
LRESULT notifyParent(const CWnd& window, NMHDR& header, UINT code) {
  CWnd* parent = window.GetParent();
  if (!parent) return 0;
  header.hwndFrom = window.GetSafeHwnd();
  header.idFrom = static_cast<std::uintptr_t>(window.GetDlgCtrlID());
  header.code = code;
  return parent->SendMessage(WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
}

LRESULT notifyParent(const CWnd& window, UINT code) {
  NMHDR header;
  return notifyParent(window, header, code);
}

void point(const CWnd& window, POINT client) {
  window.ClientToScreen(&client);
  setPointer(client);
}

void click(CTreeCtrl& tree, TreeNode* node, UINT part, TreeModel::Choice choice) {
  TreeModel& model = tree.model();
  if (node && (part & (TVHT_ONITEMLABEL | TVHT_ONITEMICON)) != 0) model.choose(node, choice);
  const unsigned before = model.generation();
  const bool forbidden = notifyParent(tree, NM_CLICK) != 0;
  if (!node || forbidden || model.generation() != before) return;
  if ((part & TVHT_ONITEMSTATEICON) != 0) tree.SetCheck(node, !node->checked);
  if ((part & TVHT_ONITEMBUTTON) != 0)
    tree.Expand(node, node->expanded ? TVE_COLLAPSE : TVE_EXPAND);
}

}  // namespace

void treeGesture(CTreeCtrl& tree, Gesture gesture, POINT client, TreeModel::Choice choice) {
  point(tree, client);
  UINT part = 0;
  TreeNode* node = tree.HitTest(client, &part);
  const bool quick = (part & (TVHT_ONITEMSTATEICON | TVHT_ONITEMBUTTON)) != 0;
  if (gesture == Gesture::kRightClick) {
    notifyParent(tree, NM_RCLICK);
  } else if (gesture == Gesture::kClick || quick) {
    click(tree, node, part, choice);
  } else {
    const unsigned before = tree.model().generation();
    const bool forbidden = notifyParent(tree, NM_DBLCLK) != 0;
    if (node && !forbidden && tree.model().generation() == before) {
      tree.Expand(node, node->expanded ? TVE_COLLAPSE : TVE_EXPAND);
    }
  }
}

std::wstring treeTip(CTreeCtrl& tree, TreeNode& node) {
  std::vector<ACHAR> text(kLongestTip);
  NMTVGETINFOTIP tip;
  tip.pszText = text.data();
  tip.cchTextMax = kLongestTip;
  tip.hItem = &node;
  tip.lParam = static_cast<LPARAM>(node.data);
  notifyParent(tree, tip.hdr, TVN_GETINFOTIP);
  text.back() = 0;
  return text.data();
}

void listGesture(CCheckListBox& list, Gesture gesture, int row) {
  const int at = row < 0 ? list.GetCount() : row;
  point(list, {4, at * CCheckListBox::kRowHeight + CCheckListBox::kRowHeight / 2});
  if (row >= 0) list.SetCurSel(row);
  if (gesture == Gesture::kRightClick) {
    notifyParent(list, NM_RCLICK);
  } else if (gesture == Gesture::kDoubleClick) {
    if (CWnd* parent = list.GetParent()) {
      parent->SendMessage(WM_COMMAND,
                          MAKEWPARAM(static_cast<UINT>(list.GetDlgCtrlID()), LBN_DBLCLK));
    }
  } else if (row >= 0) {
    list.SetCheck(row, list.GetCheck(row) == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED);
  }
}

void dropFiles(CWnd& window, const std::vector<std::string>& files) {
  std::vector<std::wstring> paths;
  paths.reserve(files.size());
  for (const std::string& file : files) paths.push_back(toWide(file));
  window.SendMessage(WM_DROPFILES, reinterpret_cast<WPARAM>(&paths));
}

bool takesKey(CWnd& window, WPARAM key) {
  MSG message;
  message.hwnd = window.GetSafeHwnd();
  message.message = WM_KEYDOWN;
  message.wParam = key;
  for (CWnd* asked = &window; asked; asked = asked->GetParent()) {
    if (asked->PreTranslateMessage(&message)) return true;
  }
  return false;
}

}  // namespace tarn::host

UINT DragQueryFile(HDROP drop, UINT file, ACHAR* name, UINT capacity) {
  const auto& paths = *static_cast<const std::vector<std::wstring>*>(drop);
  if (file >= paths.size()) return static_cast<UINT>(paths.size());
  const std::wstring& path = paths[file];
  if (name && capacity > 0) {
    const size_t length = std::min<size_t>(path.size(), capacity - 1);
    std::copy_n(path.begin(), length, name);
    name[length] = 0;
  }
  return static_cast<UINT>(path.size());
}
