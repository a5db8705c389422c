#include "_image/imagedialog.h"

#include "_image/adskdmgr.h"
#include "_image/cadimage.h"
#include "_image/cadimage_spec.h"
#include "_image/docdata.h"
#include "_image/hostcommand.h"
#include "_image/imageadding.h"
#include "_image/moduleglobals.h"
#include "acdocman.h"
#include "base/file.h"
#include "base/text.h"
#include "commoncode/cadutil/dictrecord.h"
#include "commoncode/cadutil/documentlock.h"
#include "dbapserv.h"

using namespace tarn::image;

namespace {

constexpr const ACHAR* kRootText = L"影像列表";

/// Paths stored in the current drawing whose files are there, and images of servers, for a drawing
/// without a record.
std::vector<std::wstring> storedFilesOfUnknownDrawing() {
  std::vector<std::wstring> paths;
  AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
  if (!document) return paths;
  const tarn::cad::DocumentLock lock(document);
  if (!lock.isLocked()) return paths;
  std::vector<std::wstring> stored;
  tarn::cad::readTexts({L"ImagePath", L"ImagePath", document->database()}, stored);
  for (const std::wstring& path : stored) {
    if (isServerImage(path) || tarn::fileKind(tarn::toUtf8(path)) == tarn::FileKind::kRegular) {
      paths.push_back(path);
    }
  }
  return paths;
}

}  // namespace

BEGIN_MESSAGE_MAP(ImageDialog, CAdUiBaseDialog)
ON_WM_SIZE()
ON_BN_CLICKED(IDC_LIST_ADD, &ThisClass::OnListAdd)
ON_BN_CLICKED(IDC_LIST_DELETE, &ThisClass::OnListDelete)
ON_BN_CLICKED(IDC_PANEL_OK, &ThisClass::OnListOk)
ON_BN_CLICKED(IDC_LIST_ALL, &ThisClass::OnListSelectAll)
ON_BN_CLICKED(IDC_LIST_INVERT, &ThisClass::OnListInvert)
ON_LBN_DBLCLK(IDC_IMAGE_LIST, &ThisClass::OnListDoubleClick)
ON_NOTIFY(NM_RCLICK, IDC_IMAGE_LIST, &ThisClass::OnListRightClick)
ON_WM_CONTEXTMENU()
ON_NOTIFY(NM_RCLICK, IDC_IMAGE_TREE, &ThisClass::OnTreeRightClick)
ON_COMMAND(ID_REMOVE_IMAGE, &ThisClass::OnRemoveImage)
ON_COMMAND(ID_REMOVE_ALL, &ThisClass::OnRemoveAll)
ON_COMMAND(ID_ADD_IMAGE, &ThisClass::OnAddImages)
ON_COMMAND(ID_MOVE_UP, &ThisClass::OnMoveUp)
ON_COMMAND(ID_MOVE_DOWN, &ThisClass::OnMoveDown)
ON_COMMAND(ID_GENERATE_PYRAMID, &ThisClass::OnGeneratePyramid)
ON_NOTIFY(NM_DBLCLK, IDC_IMAGE_TREE, &ThisClass::OnTreeDoubleClick)
ON_COMMAND(ID_RECTIFY_IMAGE, &ThisClass::OnRectifyImage)
ON_COMMAND(ID_ANTI_ALIASING, &ThisClass::OnAntiAliasing)
ON_COMMAND(ID_STRETCH_EQUALISE, &ThisClass::OnStretchEqualise)
ON_COMMAND(ID_STRETCH_DEVIATION, &ThisClass::OnStretchDeviation)
ON_COMMAND(ID_STRETCH_NONE, &ThisClass::OnStretchNone)
ON_NOTIFY(NM_CLICK, IDC_IMAGE_TREE, &ThisClass::OnTreeClick)
ON_NOTIFY(TVN_GETINFOTIP, IDC_IMAGE_TREE, &ThisClass::OnTreeTip)
ON_COMMAND(ID_SHOW_CHOSEN, &ThisClass::OnShowChosen)
ON_COMMAND(ID_HIDE_CHOSEN, &ThisClass::OnHideChosen)
ON_COMMAND(ID_RELINK, &ThisClass::OnRelink)
ON_WM_DROPFILES()
END_MESSAGE_MAP()

ImageDialog::ImageDialog(CWnd* parent) : CAdUiBaseDialog(IDD, parent) {}

void ImageDialog::DoDataExchange(CDataExchange* exchange) {
  CAdUiBaseDialog::DoDataExchange(exchange);
  DDX_Control(exchange, IDC_IMAGE_TREE, m_tree);
  DDX_Control(exchange, IDC_IMAGE_LIST, m_list);
}

BOOL ImageDialog::OnInitDialog() {
  CAdUiBaseDialog::OnInitDialog();
  m_tree.ModifyStyle(TVS_CHECKBOXES, 0);
  m_tree.ModifyStyle(0, TVS_CHECKBOXES);
  m_tree.SetExtendedStyle(TVS_EX_MULTISELECT, TVS_EX_MULTISELECT);
  DragAcceptFiles();
  HTREEITEM root = InsertRoot();
  if (const CDocData* record = g_dataMap ? g_dataMap->current() : nullptr) {
    for (const bool displayed : {true, false}) {
      for (const CDocData::Image& image : record->images()) {
        if (image.isDisplayed == displayed) InsertImage(root, image.path, displayed);
      }
    }
  }
  m_tree.Expand(root, TVE_EXPAND);
  FillHiddenList();
  return TRUE;
}

HTREEITEM ImageDialog::InsertRoot() {
  HTREEITEM root = m_tree.InsertItem(kRootText);
  m_tree.SetCheck(root, TRUE);
  return root;
}

void ImageDialog::InsertImage(HTREEITEM root, const std::wstring& path, bool displayed) {
  m_tree.SetCheck(m_tree.InsertItem(path.c_str(), root), displayed);
}

void ImageDialog::RefreshList() {
  if (!GetSafeHwnd()) return;
  m_tree.DeleteAllItems();
  HTREEITEM root = InsertRoot();
  if (const CDocData* record = g_dataMap ? g_dataMap->current() : nullptr) {
    for (const CDocData::Image& image : record->images()) {
      InsertImage(root, image.path, image.isDisplayed);
    }
  } else {
    for (const std::wstring& path : storedFilesOfUnknownDrawing()) InsertImage(root, path, false);
  }
  m_tree.Expand(root, TVE_EXPAND);
  FillHiddenList();
}

std::wstring ImageDialog::SelectedImage() const {
  HTREEITEM item = m_tree.GetSelectedItem();
  if (!item || item == m_tree.GetRootItem()) return {};
  return m_tree.GetItemText(item).GetString();
}

std::vector<HTREEITEM> ImageDialog::ChosenItems() const {
  std::vector<HTREEITEM> chosen;
  HTREEITEM caret = m_tree.GetSelectedItem();
  for (HTREEITEM item = m_tree.GetChildItem(m_tree.GetRootItem()); item;
       item = m_tree.GetNextSiblingItem(item)) {
    if (item == caret || m_tree.GetItemState(item, TVIS_SELECTED) != 0) chosen.push_back(item);
  }
  return chosen;
}

std::vector<std::wstring> ImageDialog::TreeOrder() const {
  std::vector<std::wstring> paths;
  for (HTREEITEM item = m_tree.GetChildItem(m_tree.GetRootItem()); item;
       item = m_tree.GetNextSiblingItem(item)) {
    paths.emplace_back(m_tree.GetItemText(item).GetString());
  }
  return paths;
}

// Neither key closes the panel.
BOOL ImageDialog::PreTranslateMessage(MSG* message) {
  if (message->message == WM_KEYDOWN &&
      (message->wParam == VK_RETURN || message->wParam == VK_ESCAPE)) {
    return TRUE;
  }
  return CAdUiBaseDialog::PreTranslateMessage(message);
}

void ImageDialog::OnSize(UINT type, int width, int height) {
  CAdUiBaseDialog::OnSize(type, width, height);
  CRect rect;
  GetWindowRect(&rect);
  ScreenToClient(&rect);
  m_tree.MoveWindow(&rect);
}

void ImageDialog::OnContextMenu(CWnd* window, CPoint point) {
  CAdUiBaseDialog::OnContextMenu(window, point);
}

std::wstring tarn::image::imageSelectedInPanel() {
  return g_imageDialog ? g_imageDialog->SelectedImage() : std::wstring();
}
