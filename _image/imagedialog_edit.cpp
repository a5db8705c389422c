// What the panel changes: images added, removed, shown, hidden, moved.
#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/imagedialog.h"
#include "_image/imageedit.h"
#include "_image/imagerelink.h"
#include "_image/moduleglobals.h"
#include "acdocman.h"
#include "commoncode/cadutil/message.h"

using namespace tarn::image;
using tarn::cad::printMessage;

namespace {

AcApDocument* currentDocument() {
  return acDocManager ? acDocManager->curDocument() : nullptr;
}

CDocData* currentRecord() {
  return g_dataMap ? g_dataMap->current() : nullptr;
}

}  // namespace

void ImageDialog::OnAddImages() {
  addImages();
  CDocData* record = currentRecord();
  if (m_antiAliasing && record) ApplyAntiAliasing(*record, true);
}

void ImageDialog::OnDropFiles(HDROP drop) {
  AcApDocument* document = currentDocument();
  CDocData* record = document ? currentRecordOrReport() : nullptr;
  if (!record) return;
  std::vector<std::wstring> paths;
  const UINT count = DragQueryFile(drop, UINT(-1), nullptr, 0);
  for (UINT i = 0; i < count; ++i) {
    std::vector<ACHAR> path(DragQueryFile(drop, i, nullptr, 0) + 1);
    DragQueryFile(drop, i, path.data(), static_cast<UINT>(path.size()));
    paths.emplace_back(path.data());
  }
  addImagesOf(document, *record, paths);
  if (m_antiAliasing) ApplyAntiAliasing(*record, true);
}

void ImageDialog::OnRemoveImage() {
  AcApDocument* document = currentDocument();
  CDocData* record = document ? currentRecordOrReport() : nullptr;
  if (!record) return;
  bool isAnyRemoved = false;
  {
    StoredListChange change(document, *record);
    if (!change.isErased()) return;
    for (HTREEITEM item : ChosenItems()) {
      const std::wstring path = m_tree.GetItemText(item).GetString();
      if (!releaseListedImage(*record, path)) {
        printMessage(L"\ndelete image fail");
        break;
      }
      change.remove(path);
      m_tree.DeleteItem(item);
      printMessage(L"\n%1的影像已被删除!", path);
      isAnyRemoved = true;
    }
  }
  if (!isAnyRemoved) return;
  FillHiddenList();
  sendCommandToHost(L"regen");
}

void ImageDialog::OnRemoveAll() {
  AcApDocument* document = currentDocument();
  CDocData* record = document ? currentRecordOrReport() : nullptr;
  if (!record) return;
  for (const std::wstring& path : TreeOrder()) releaseListedImage(*record, path);
  m_tree.DeleteAllItems();
  InsertRoot();
  FillHiddenList();
  const std::vector<std::wstring> before = storedImagePaths(*record);
  eraseStoredImagePaths(document, *record);
  forgetPlacements(document, *record, before, {});
  sendCommandToHost(L"EraseInvalidImage");
  sendCommandToHost(L"regen");
}

void ImageDialog::OnTreeClick(NMHDR*, LRESULT* result) {
  *result = 0;
  CPoint point;
  GetCursorPos(&point);
  m_tree.ScreenToClient(&point);
  UINT part = 0;
  HTREEITEM item = m_tree.HitTest(point, &part);
  CDocData* record = currentRecord();
  if (!item || (part & TVHT_ONITEMSTATEICON) == 0 || !record) return;
  // The tree turns the box over when this has returned.
  const bool becomesChecked = !m_tree.GetCheck(item);
  if (m_tree.ItemHasChildren(item)) {
    for (HTREEITEM child = m_tree.GetChildItem(item); child;
         child = m_tree.GetNextSiblingItem(child)) {
      m_tree.SetCheck(child, becomesChecked);
      record->setDisplayed(m_tree.GetItemText(child).GetString(), becomesChecked);
    }
  } else {
    record->setDisplayed(m_tree.GetItemText(item).GetString(), becomesChecked);
  }
  FillHiddenList();
  sendCommandToHost(L"regen");
}

void ImageDialog::DisplayChosen(bool display) {
  CDocData* record = currentRecord();
  const std::vector<HTREEITEM> chosen = ChosenItems();
  if (!record || chosen.empty()) return;
  for (HTREEITEM item : chosen) {
    m_tree.SetCheck(item, display);
    record->setDisplayed(m_tree.GetItemText(item).GetString(), display);
  }
  FillHiddenList();
  sendCommandToHost(L"regen");
}

void ImageDialog::OnShowChosen() {
  DisplayChosen(true);
}

void ImageDialog::OnHideChosen() {
  DisplayChosen(false);
}

// Deliberate: texts and data of the two items change places, their check boxes stay.
void ImageDialog::MoveSelected(HTREEITEM other) {
  HTREEITEM item = m_tree.GetSelectedItem();
  CDocData* record = currentRecord();
  if (!item || !other || item == m_tree.GetRootItem() || !record) return;
  const CString text = m_tree.GetItemText(item);
  const DWORD_PTR data = m_tree.GetItemData(item);
  m_tree.SetItemText(item, m_tree.GetItemText(other));
  m_tree.SetItemData(item, m_tree.GetItemData(other));
  m_tree.SetItemText(other, text);
  m_tree.SetItemData(other, data);
  m_tree.SelectItem(nullptr);
  m_tree.SelectItem(other);
  record->reorder(TreeOrder());
  storeOrder(currentDocument(), *record);
  sendCommandToHost(L"regen");
}

void ImageDialog::OnMoveUp() {
  MoveSelected(m_tree.GetPrevSiblingItem(m_tree.GetSelectedItem()));
}

void ImageDialog::OnMoveDown() {
  MoveSelected(m_tree.GetNextSiblingItem(m_tree.GetSelectedItem()));
}

void ImageDialog::OnRelink() {
  AcApDocument* document = currentDocument();
  CDocData* record = document ? currentRecordOrReport() : nullptr;
  if (record) relinkImages(document, *record);
}
