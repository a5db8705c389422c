#include <utility>

#include "adui.h"
#include "afxmenu.h"
#include "host/ui/menumodel.h"
#include "host/ui/uibackend.h"
#include "host/ui/uiservices.h"
#include "host/ui/windowinput.h"
#include "host/ui/windowstate.h"

namespace tarn::host {

/// What a dock view may ask of its bar.
struct DockAccess final : DockEvents {
  explicit DockAccess(CAdUiDockControlBar& owner) : bar(owner) {}

  DockView* view() const { return static_cast<DockView*>(WindowAccess::viewOf(&bar)); }

  void resized(int width, int height) override {
    WindowState* state = WindowAccess::of(bar);
    if (!state) return;
    state->rect = CRect(0, 0, width, height);
    CRect client(0, 0, width, height);
    bar.SizeChanged(&client, bar.IsFloating(), 0);
  }

  void menuWanted(POINT screen) override;

  void visibleNow(bool visible) override {
    if (WindowState* state = WindowAccess::of(bar)) state->visible = visible;
  }

  CAdUiDockControlBar& bar;
};

namespace {

/// The standard items of a bar's menu.
enum : UINT {
  kDockLeft = 4096,
  kAllowDocking = 4097,
  kHide = 4098,
  kDockRight = 4099,
  kFloat = 4100,
};

std::shared_ptr<MenuModel> standardMenu() {
  auto menu = std::make_shared<MenuModel>();
  menu->items = {{kDockLeft, L"停靠在左侧", false, nullptr},
                 {kDockRight, L"停靠在右侧", false, nullptr},
                 {kFloat, L"浮动", false, nullptr},
                 {kAllowDocking, L"允许停靠", true, nullptr},
                 {kHide, L"隐藏", false, nullptr}};
  return menu;
}

}  // namespace

void DockAccess::menuWanted(POINT screen) {
  const std::shared_ptr<MenuModel> menu = standardMenu();
  if (!bar.AddCustomMenuItems(reinterpret_cast<LPARAM>(menu.get()))) return;
  UiBackend* backend = uiServices().backend;
  const UINT chosen = backend ? backend->popupMenu(*menu, screen) : 0;
  if (chosen == kDockLeft) view()->dock(DockPlace::kLeft);
  if (chosen == kDockRight) view()->dock(DockPlace::kRight);
  if (chosen == kFloat) view()->dock(DockPlace::kFloating);
  if (chosen == kHide) bar.ShowWindow(SW_HIDE);
  // What is no standard item is the application's own.
  if (chosen != 0 && (chosen < kDockLeft || chosen > kFloat)) {
    bar.SendMessage(WM_COMMAND, MAKEWPARAM(chosen, 0));
  }
}

void showBarMenu(CAdUiDockControlBar& bar) {
  POINT corner;
  bar.ClientToScreen(&corner);
  DockAccess(bar).menuWanted(corner);
}

}  // namespace tarn::host

using tarn::host::DockAccess;
using tarn::host::DockPlace;
using tarn::host::WindowAccess;

CAdUiDockControlBar::CAdUiDockControlBar() : access_(std::make_unique<DockAccess>(*this)) {}

CAdUiDockControlBar::~CAdUiDockControlBar() {
  CAdUiDockControlBar::DestroyWindow();
}

BOOL CAdUiDockControlBar::Create(const ACHAR* className, const ACHAR* title, DWORD style,
                                 const RECT& rect, CWnd* parent, UINT id) {
  if (GetSafeHwnd()) return FALSE;
  auto state = std::make_unique<tarn::host::WindowState>();
  state->parent = parent;
  state->rect = CRect(rect);
  state->style = style;
  state->id = static_cast<int>(id);
  state->text = title;
  auto view = tarn::host::windowSystem().makeDock(title, *access_);
  view->setTitle(title);
  view->setGeometry(rect);
  state->view = std::move(view);
  WindowAccess::make(*this, std::move(state));
  CREATESTRUCT create{title, className, style};
  if (SendMessage(WM_CREATE, 0, reinterpret_cast<LPARAM>(&create)) != 0) {
    DestroyWindow();
    return FALSE;
  }
  if ((style & WS_VISIBLE) != 0) ShowWindow(SW_SHOW);
  access_->resized(rect.right - rect.left, rect.bottom - rect.top);
  return TRUE;
}

BOOL CAdUiDockControlBar::DestroyWindow() {
  return CWnd::DestroyWindow();
}

void CAdUiDockControlBar::EnableDocking(DWORD sides) {
  if (auto* view = access_->view()) {
    view->allowSides((sides & CBRS_ALIGN_LEFT) != 0, (sides & CBRS_ALIGN_RIGHT) != 0);
  }
}

void CAdUiDockControlBar::RestoreControlBar(UINT side) {
  auto* view = access_->view();
  if (!view) return;
  view->restore(side == AFX_IDW_DOCKBAR_RIGHT ? DockPlace::kRight : DockPlace::kLeft);
  view->setVisible(IsWindowVisible() != FALSE);
}

BOOL CAdUiDockControlBar::IsFloating() const {
  const auto* view = access_->view();
  return view && view->isFloating();
}

int CAdUiDockControlBar::OnCreate(LPCREATESTRUCT) {
  return 0;
}

void CAdUiDockControlBar::SizeChanged(CRect*, BOOL, int) {}

BOOL CAdUiDockControlBar::AddCustomMenuItems(LPARAM) {
  return TRUE;
}

BEGIN_MESSAGE_MAP(CAdUiDockControlBar, CWnd)
ON_WM_CREATE()
END_MESSAGE_MAP()
