// The hidden list and buttons of the panel. They mirror the tree and answer their messages.
#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/imagedialog.h"
#include "_image/imagedockbar.h"
#include "_image/imageedit.h"
#include "_image/imagezoom.h"
#include "_image/moduleglobals.h"
#include "acdocman.h"
#include "acedads.h"
#include "commoncode/cadutil/message.h"

using namespace tarn::image;
using tarn::cad::printMessage;

namespace {

std::wstring textOf(const CCheckListBox& list, int index) {
  CString text;
  list.GetText(index, text);
  return text.GetString();
}

}  // namespace

void ImageDialog::FillHiddenList() {
  m_list.ResetContent();
  for (HTREEITEM item = m_tree.GetChildItem(m_tree.GetRootItem()); item;
       item = m_tree.GetNextSiblingItem(item)) {
    m_list.SetCheck(m_list.AddString(m_tree.GetItemText(item)), m_tree.GetCheck(item));
  }
  m_itemCount = m_list.GetCount();
}

void ImageDialog::OnListAdd() {
  addImagesThroughPanel();
}

/// Removes the first item that is checked.
void ImageDialog::OnListDelete() {
  AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
  CDocData* record = document ? currentRecordOrReport() : nullptr;
  int index = 0;
  while (index < m_itemCount && m_list.GetCheck(index) != BST_CHECKED) ++index;
  if (!record || index == m_itemCount) return;
  const std::wstring path = textOf(m_list, index);
  {
    StoredListChange change(document, *record);
    if (!change.isErased()) return;
    if (!releaseListedImage(*record, path)) {
      printMessage(L"\n删除影像失败!");
      return;
    }
    change.remove(path);
  }
  printMessage(L"\n%1的影像已被删除!", path);
  RefreshList();
  sendCommandToHost(L"regen");
}

void ImageDialog::OnListOk() {
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  if (!record) return;
  for (int i = 0; i < m_itemCount; ++i) {
    record->setDisplayed(textOf(m_list, i), m_list.GetCheck(i) == BST_CHECKED);
  }
  RefreshList();
  sendCommandToHost(L"regen");
}

void ImageDialog::OnListSelectAll() {
  for (int i = 0; i < m_itemCount; ++i) m_list.SetCheck(i, BST_CHECKED);
}

void ImageDialog::OnListInvert() {
  for (int i = 0; i < m_itemCount; ++i) {
    const int check = m_list.GetCheck(i);
    if (check == BST_INDETERMINATE) continue;
    m_list.SetCheck(i, check == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED);
  }
}

void ImageDialog::OnListDoubleClick() {
  CDocData* record = g_dataMap ? g_dataMap->current() : nullptr;
  const int index = m_list.GetCurSel();
  if (!record || index == LB_ERR) return;
  zoomByCommand(*record, textOf(m_list, index));
}

void ImageDialog::OnListRightClick(NMHDR*, LRESULT* result) {
  *result = 0;
  CPoint cursor;
  GetCursorPos(&cursor);
  CPoint point = cursor;
  m_list.ScreenToClient(&point);
  BOOL isOutside = TRUE;
  m_list.ItemFromPoint(point, isOutside);
  CMenu menu;
  menu.CreatePopupMenu();
  // Deliberate: one number for both texts.
  menu.AppendMenu(MF_STRING, ID_REMOVE_IMAGE, isOutside ? L"添加影像" : L"删除影像");
  menu.TrackPopupMenu(TPM_LEFTALIGN | TPM_RIGHTBUTTON, cursor.x, cursor.y, this);
}
