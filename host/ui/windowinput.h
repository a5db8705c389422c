// What the user does with windows, as views and scripts hand it on.
#pragma once

#include <string>
#include <vector>

#include "afxtypes.h"
#include "host/ui/treemodel.h"

class CAdUiDockControlBar;
class CCheckListBox;
class CTreeCtrl;
class CWnd;

namespace tarn::host {

class TreeView;

/// The dialog made from that resource; null when there is none.
ACADHOST_EXPORT CWnd* dialogOf(int resource);
/// Null before the tree is made.
ACADHOST_EXPORT TreeView* treeViewOf(const CTreeCtrl& tree);
/// The bar's menu at its corner.
ACADHOST_EXPORT void showBarMenu(CAdUiDockControlBar& bar);

enum class Gesture { kClick, kDoubleClick, kRightClick };

/// Where the mouse is while what follows is handled.
ACADHOST_EXPORT void setPointer(POINT screen);

/// A gesture at a client point. A click on a label chooses the item as `choice` says, one on the
/// button opens or shuts it; the parent is told (NM_ codes); a check box turns over after that,
/// unless the parent's answer forbids it.
ACADHOST_EXPORT void treeGesture(CTreeCtrl& tree, Gesture gesture, POINT client,
                                 TreeModel::Choice choice);
/// The tip of an item, asked of the parent; empty for none.
ACADHOST_EXPORT std::wstring treeTip(CTreeCtrl& tree, TreeNode& node);

/// A gesture on a row of the list, or below the last one (-1). A click turns the check box over.
ACADHOST_EXPORT void listGesture(CCheckListBox& list, Gesture gesture, int row);

/// Files (UTF-8) dropped on a window.
ACADHOST_EXPORT void dropFiles(CWnd& window, const std::vector<std::string>& files);

/// A key on its way to a window: it and those around it are asked. True when one of them has
/// taken it.
ACADHOST_EXPORT bool takesKey(CWnd& window, WPARAM key);

}  // namespace tarn::host
