#include <utility>

#include "afxcmn.h"
#include "host/ui/treemodel.h"
#include "host/ui/windowinput.h"
#include "host/ui/windowstate.h"

using tarn::host::TreeModel;
using tarn::host::TreeView;
using tarn::host::WindowAccess;

TreeView* tarn::host::treeViewOf(const CTreeCtrl& tree) {
  return static_cast<TreeView*>(WindowAccess::viewOf(&tree));
}

CTreeCtrl::CTreeCtrl() : model_(std::make_unique<TreeModel>()) {}
CTreeCtrl::~CTreeCtrl() = default;

void CTreeCtrl::windowMade() {
  tarn::host::WindowState* state = WindowAccess::of(*this);
  tarn::host::WindowView* parent = WindowAccess::viewOf(state->parent);
  if (!parent) return;
  state->view = tarn::host::windowSystem().makeTree(*parent, *this);
  state->view->setGeometry(state->rect);
  state->view->setVisible(state->visible);
  model_->changed = [this] {
    if (TreeView* view = tarn::host::treeViewOf(*this)) view->contentChanged();
  };
}

HTREEITEM CTreeCtrl::InsertItem(const ACHAR* text, HTREEITEM parent, HTREEITEM) {
  if (!GetSafeHwnd()) return nullptr;
  return model_->add(parent ? *parent : model_->root(), text ? text : L"");
}

BOOL CTreeCtrl::DeleteItem(HTREEITEM item) {
  if (!item) return FALSE;
  model_->remove(*item);
  return TRUE;
}

BOOL CTreeCtrl::DeleteAllItems() {
  model_->clear();
  return TRUE;
}

HTREEITEM CTreeCtrl::GetRootItem() const {
  return GetChildItem(&model_->root());
}

HTREEITEM CTreeCtrl::GetChildItem(HTREEITEM item) const {
  return item && !item->children.empty() ? item->children.front().get() : nullptr;
}

HTREEITEM CTreeCtrl::GetNextSiblingItem(HTREEITEM item) const {
  return item ? model_->sibling(*item, 1) : nullptr;
}

HTREEITEM CTreeCtrl::GetPrevSiblingItem(HTREEITEM item) const {
  return item ? model_->sibling(*item, -1) : nullptr;
}

HTREEITEM CTreeCtrl::GetParentItem(HTREEITEM item) const {
  return item && item->parent != &model_->root() ? item->parent : nullptr;
}

BOOL CTreeCtrl::ItemHasChildren(HTREEITEM item) const {
  return item && !item->children.empty();
}

CString CTreeCtrl::GetItemText(HTREEITEM item) const {
  return item ? CString(item->text) : CString();
}

BOOL CTreeCtrl::SetItemText(HTREEITEM item, const ACHAR* text) {
  if (!item) return FALSE;
  item->text = text ? text : L"";
  model_->tellChanged();
  return TRUE;
}

DWORD_PTR CTreeCtrl::GetItemData(HTREEITEM item) const {
  return item ? item->data : 0;
}

BOOL CTreeCtrl::SetItemData(HTREEITEM item, DWORD_PTR data) {
  if (!item) return FALSE;
  item->data = data;
  return TRUE;
}

BOOL CTreeCtrl::GetCheck(HTREEITEM item) const {
  return item && item->checked;
}

BOOL CTreeCtrl::SetCheck(HTREEITEM item, BOOL check) {
  if (!item) return FALSE;
  item->checked = check != FALSE;
  model_->tellChanged();
  return TRUE;
}

BOOL CTreeCtrl::Expand(HTREEITEM item, UINT code) {
  if (!ItemHasChildren(item)) return FALSE;
  item->expanded = code == TVE_EXPAND;
  model_->tellChanged();
  return TRUE;
}

HTREEITEM CTreeCtrl::GetSelectedItem() const {
  return model_->caret();
}

BOOL CTreeCtrl::SelectItem(HTREEITEM item) {
  const bool stays = item && item->selected && model_->severalAllowed();
  model_->choose(item, stays ? TreeModel::Choice::kExtend : TreeModel::Choice::kOnly);
  return TRUE;
}

UINT CTreeCtrl::GetItemState(HTREEITEM item, UINT mask) const {
  return item && item->selected ? (mask & TVIS_SELECTED) : 0;
}

DWORD CTreeCtrl::SetExtendedStyle(DWORD style, DWORD mask) {
  const DWORD before = model_->severalAllowed() ? DWORD{TVS_EX_MULTISELECT} : 0;
  if ((mask & TVS_EX_MULTISELECT) != 0) model_->allowSeveral((style & TVS_EX_MULTISELECT) != 0);
  return before;
}

HTREEITEM CTreeCtrl::HitTest(CPoint point, UINT* flags) const {
  UINT found = TVHT_NOWHERE;
  const TreeView* view = tarn::host::treeViewOf(*this);
  HTREEITEM item = view ? view->hitTest(point, found) : nullptr;
  if (flags) *flags = found;
  return item;
}
