#include "_image/imagedockbar.h"

#include "_image/imagedialog.h"
#include "_image/moduleglobals.h"
#include "afxmenu.h"
#include "rxmfcapi.h"

namespace {

constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN;
/// The dialog stands this much below the upper edge of the bar.
constexpr int kInset = 2;

}  // namespace

BEGIN_MESSAGE_MAP(CCommonDockControlBar, CAdUiDockControlBar)
ON_WM_CREATE()
END_MESSAGE_MAP()

void CCommonDockControlBar::SetChild(ImageDialog* child, UINT resource) {
  m_child = child;
  m_resource = resource;
}

BOOL CCommonDockControlBar::Create(CWnd* parent, const ACHAR* title) {
  const ACHAR* className = AfxRegisterWndClass(CS_DBLCLKS, IDC_ARROW);
  const CRect start(0, 0, 250, 200);
  return CAdUiDockControlBar::Create(className, title, kStyle, start, parent, m_resource);
}

int CCommonDockControlBar::OnCreate(LPCREATESTRUCT create) {
  if (CAdUiDockControlBar::OnCreate(create) != 0) return -1;
  if (!m_child || !m_child->Create(m_resource, this)) return -1;
  m_child->ShowWindow(SW_SHOW);
  return 0;
}

void CCommonDockControlBar::SizeChanged(CRect* client, BOOL floating, int flags) {
  CAdUiDockControlBar::SizeChanged(client, floating, flags);
  if (!m_child || !m_child->GetSafeHwnd()) return;
  m_child->MoveWindow(client->left, client->top + kInset, client->Width(), client->Height(), TRUE);
}

BOOL CCommonDockControlBar::AddCustomMenuItems(LPARAM menu) {
  CMenu items;
  items.Attach(reinterpret_cast<HMENU>(menu));  // NOLINT(performance-no-int-to-ptr)
  items.DeleteMenu(tarn::image::ID_BAR_ALLOW_DOCKING, MF_BYCOMMAND);
  items.DeleteMenu(tarn::image::ID_BAR_HIDE, MF_BYCOMMAND);
  items.Detach();
  return TRUE;
}

namespace tarn::image {
namespace {

void refreshPanel() {
  if (g_imageDialog) g_imageDialog->RefreshList();
}

}  // namespace

void openImageList() {
  if (!g_imageDialog) g_imageDialog = new ImageDialog();
  if (!g_imageBar) g_imageBar = new CCommonDockControlBar();
  g_imageBar->SetChild(g_imageDialog, IDD_IMAGE_LIST);
  CMDIFrameWnd* frame = acedGetAcadFrame();
  if (!frame) return;
  if (g_imageBar->GetSafeHwnd()) {
    if (!g_imageBar->IsWindowVisible()) frame->ShowControlBar(g_imageBar, TRUE, FALSE);
    return;
  }
  if (!g_imageBar->Create(frame, L"影像控制")) return;
  g_imageListChanged = &refreshPanel;
  g_imageBar->EnableDocking(CBRS_ALIGN_LEFT | CBRS_ALIGN_RIGHT);
  g_imageBar->RestoreControlBar(AFX_IDW_DOCKBAR_LEFT);
}

void addImagesThroughPanel() {
  ImageDialog temporary;
  temporary.OnAddImages();
}

void destroyImagePanel() {
  g_imageListChanged = nullptr;
  delete g_imageBar;
  g_imageBar = nullptr;
  delete g_imageDialog;
  g_imageDialog = nullptr;
}

}  // namespace tarn::image
