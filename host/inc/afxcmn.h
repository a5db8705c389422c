// The tree of items.
#pragma once

#include <functional>
#include <memory>

#include "afxwnd.h"

namespace tarn::host {
class TreeModel;
struct TreeNode;
}  // namespace tarn::host

using HTREEITEM = tarn::host::TreeNode*;
#define TVI_ROOT (static_cast<HTREEITEM>(nullptr))
#define TVI_LAST (static_cast<HTREEITEM>(nullptr))

enum : DWORD {
  TVS_HASBUTTONS = 0x1,
  TVS_HASLINES = 0x2,
  TVS_LINESATROOT = 0x4,
  TVS_CHECKBOXES = 0x100,
  TVS_SINGLEEXPAND = 0x400,
  TVS_INFOTIP = 0x800,
};
enum : DWORD { TVS_EX_MULTISELECT = 0x2 };
enum : UINT {
  TVHT_NOWHERE = 0x1,
  TVHT_ONITEMICON = 0x2,
  TVHT_ONITEMLABEL = 0x4,
  TVHT_ONITEMINDENT = 0x8,
  TVHT_ONITEMBUTTON = 0x10,
  TVHT_ONITEMRIGHT = 0x20,
  TVHT_ONITEMSTATEICON = 0x40,
  TVHT_ONITEM = 0x46,
};
enum : UINT { TVE_COLLAPSE = 1, TVE_EXPAND = 2 };
enum : UINT { TVIS_SELECTED = 0x2 };
enum : UINT { TVN_GETINFOTIP = static_cast<UINT>(-414) };

/// What TVN_GETINFOTIP carries: the handler writes the tip of `hItem`.
struct NMTVGETINFOTIP {
  NMHDR hdr;
  ACHAR* pszText = nullptr;
  int cchTextMax = 0;
  HTREEITEM hItem = nullptr;
  LPARAM lParam = 0;
};

/// A tree with one caret item. Handles stand for items until these are deleted. Before the window
/// is made there are no items and nothing can be inserted.
class ACADHOST_EXPORT CTreeCtrl : public CWnd {
 public:
  CTreeCtrl();
  ~CTreeCtrl() override;

  HTREEITEM InsertItem(const ACHAR* text, HTREEITEM parent = TVI_ROOT, HTREEITEM after = TVI_LAST);
  BOOL DeleteItem(HTREEITEM item);
  BOOL DeleteAllItems();

  HTREEITEM GetRootItem() const;
  HTREEITEM GetChildItem(HTREEITEM item) const;
  HTREEITEM GetNextSiblingItem(HTREEITEM item) const;
  HTREEITEM GetPrevSiblingItem(HTREEITEM item) const;
  HTREEITEM GetParentItem(HTREEITEM item) const;
  BOOL ItemHasChildren(HTREEITEM item) const;

  CString GetItemText(HTREEITEM item) const;
  BOOL SetItemText(HTREEITEM item, const ACHAR* text);
  DWORD_PTR GetItemData(HTREEITEM item) const;
  BOOL SetItemData(HTREEITEM item, DWORD_PTR data);
  BOOL GetCheck(HTREEITEM item) const;
  BOOL SetCheck(HTREEITEM item, BOOL check = TRUE);
  BOOL Expand(HTREEITEM item, UINT code);

  HTREEITEM GetSelectedItem() const;
  /// Makes it the caret item. Others that are selected stay so only when it is one of them.
  BOOL SelectItem(HTREEITEM item);
  /// TVIS_SELECTED or 0.
  UINT GetItemState(HTREEITEM item, UINT mask) const;
  /// With TVS_EX_MULTISELECT several items can be selected beside the caret.
  DWORD SetExtendedStyle(DWORD style, DWORD mask);

  /// The item at a client point and what of it.
  HTREEITEM HitTest(CPoint point, UINT* flags = nullptr) const;

  /// For the program around the host: what stands in the tree.
  tarn::host::TreeModel& model() { return *model_; }

 protected:
  void windowMade() override;

 private:
  std::unique_ptr<tarn::host::TreeModel> model_;
};
