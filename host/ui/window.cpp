#include <algorithm>
#include <map>
#include <utility>

#include "afxwnd.h"
#include "host/ui/uibackend.h"
#include "host/ui/uiservices.h"
#include "host/ui/windowinput.h"
#include "host/ui/windowstate.h"

using tarn::host::WindowState;

namespace tarn::host {

namespace {

POINT& pointer() {
  static POINT position;
  return position;
}

const AFX_MSGMAP_ENTRY* findEntry(const AFX_MSGMAP* map, UINT message, UINT code, UINT id) {
  for (; map; map = map->baseMap ? map->baseMap() : nullptr) {
    for (const AFX_MSGMAP_ENTRY* entry = map->entries; entry->call; ++entry) {
      if (entry->message == message && entry->code == code && entry->id == id) return entry;
    }
  }
  return nullptr;
}

/// The client area's corner on the screen.
POINT originOf(const CWnd& window) {
  const WindowState* state = WindowAccess::of(window);
  if (!state) return {};
  if (state->view) return state->view->origin();
  POINT origin = state->parent ? originOf(*state->parent) : POINT{};
  origin.x += state->rect.left;
  origin.y += state->rect.top;
  return origin;
}

LPARAM packed(int low, int high) {
  return static_cast<LPARAM>((static_cast<std::uint32_t>(high) & 0xffffU) << 16 |
                             (static_cast<std::uint32_t>(low) & 0xffffU));
}

}  // namespace

WindowSystem& windowSystem() {
  UiBackend* backend = uiServices().backend;
  WindowSystem* system = backend ? backend->windows() : nullptr;
  return system ? *system : plainWindows();
}

void setPointer(POINT screen) {
  pointer() = screen;
}

void WindowAccess::make(CWnd& window, std::unique_ptr<WindowState> state) {
  window.state_ = std::move(state);
  CWnd* parent = window.state_->parent;
  if (parent && parent->state_) parent->state_->children.push_back(&window);
}

void WindowAccess::replace(CWnd& from, CWnd& to) {
  to.state_ = std::move(from.state_);
  CWnd* parent = to.state_->parent;
  if (!parent || !parent->state_) return;
  std::replace(parent->state_->children.begin(), parent->state_->children.end(), &from, &to);
}

}  // namespace tarn::host

CWnd::CWnd() = default;

CWnd::~CWnd() {
  CWnd::DestroyWindow();
}

HWND CWnd::GetSafeHwnd() const {
  return state_ ? reinterpret_cast<HWND>(const_cast<CWnd*>(this)) : nullptr;
}

BOOL CWnd::DestroyWindow() {
  if (!state_) return FALSE;
  const std::vector<CWnd*> children = state_->children;
  for (CWnd* child : children) child->DestroyWindow();
  if (state_->parent && state_->parent->state_) {
    std::vector<CWnd*>& all = state_->parent->state_->children;
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
  }
  state_.reset();
  return TRUE;
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  return WindowProc(message, wParam, lParam);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  UINT code = 0;
  UINT id = 0;
  if (message == WM_COMMAND) {
    id = static_cast<UINT>(wParam & 0xffffU);
    code = static_cast<UINT>((wParam >> 16) & 0xffffU);
  } else if (message == WM_NOTIFY) {
    // The message carries the address as a number.
    const auto* header =
        reinterpret_cast<const NMHDR*>(lParam);  // NOLINT(performance-no-int-to-ptr)
    id = static_cast<UINT>(header->idFrom);
    code = header->code;
  }
  const AFX_MSGMAP_ENTRY* entry = tarn::host::findEntry(GetMessageMap(), message, code, id);
  return entry ? entry->call(this, wParam, lParam) : 0;
}

const AFX_MSGMAP* CWnd::GetThisMessageMap() {
  static const AFX_MSGMAP_ENTRY entries[] = {{}};
  static const AFX_MSGMAP map = {nullptr, entries};
  return &map;
}

const AFX_MSGMAP* CWnd::GetMessageMap() const {
  return GetThisMessageMap();
}

BOOL CWnd::PreTranslateMessage(MSG*) {
  return FALSE;
}

int CWnd::OnCreate(LPCREATESTRUCT) {
  return 0;
}
void CWnd::OnSize(UINT, int, int) {}
void CWnd::OnContextMenu(CWnd*, CPoint) {}

CWnd* CWnd::SetFocus() {
  if (state_ && state_->view) state_->view->setFocus();
  return nullptr;
}

CWnd* CWnd::GetParent() const {
  return state_ ? state_->parent : nullptr;
}

CWnd* CWnd::GetDlgItem(int id) const {
  if (!state_) return nullptr;
  for (CWnd* child : state_->children) {
    if (child->GetDlgCtrlID() == id) return child;
  }
  return nullptr;
}

int CWnd::GetDlgCtrlID() const {
  return state_ ? state_->id : 0;
}

BOOL CWnd::ModifyStyle(DWORD remove, DWORD add, UINT) {
  if (!state_) return FALSE;
  const DWORD before = std::exchange(state_->style, (state_->style & ~remove) | add);
  return before != state_->style;
}

DWORD CWnd::GetStyle() const {
  return state_ ? state_->style : 0;
}

void CWnd::GetWindowText(CString& text) const {
  text = state_ ? state_->text : CString();
}

BOOL CWnd::ShowWindow(int show) {
  if (!state_) return FALSE;
  const bool before = std::exchange(state_->visible, show != SW_HIDE);
  if (state_->view) state_->view->setVisible(state_->visible);
  return before;
}

BOOL CWnd::IsWindowVisible() const {
  return state_ && state_->visible;
}

void CWnd::MoveWindow(int x, int y, int width, int height, BOOL) {
  if (!state_) return;
  state_->rect = CRect(x, y, x + width, y + height);
  if (state_->view) state_->view->setGeometry(state_->rect);
  SendMessage(WM_SIZE, 0, tarn::host::packed(width, height));
}

void CWnd::MoveWindow(const RECT* rect, BOOL repaint) {
  MoveWindow(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, repaint);
}

void CWnd::GetClientRect(RECT* rect) const {
  *rect = state_ ? CRect(0, 0, state_->rect.Width(), state_->rect.Height()) : CRect();
}

void CWnd::GetWindowRect(RECT* rect) const {
  GetClientRect(rect);
  const POINT origin = tarn::host::originOf(*this);
  rect->left += origin.x;
  rect->right += origin.x;
  rect->top += origin.y;
  rect->bottom += origin.y;
}

void CWnd::ScreenToClient(POINT* point) const {
  const POINT origin = tarn::host::originOf(*this);
  point->x -= origin.x;
  point->y -= origin.y;
}

void CWnd::ScreenToClient(RECT* rect) const {
  POINT first = {rect->left, rect->top};
  POINT last = {rect->right, rect->bottom};
  ScreenToClient(&first);
  ScreenToClient(&last);
  *rect = {first.x, first.y, last.x, last.y};
}

void CWnd::ClientToScreen(POINT* point) const {
  const POINT origin = tarn::host::originOf(*this);
  point->x += origin.x;
  point->y += origin.y;
}

void CWnd::DragAcceptFiles(BOOL accept) {
  if (state_ && state_->view) state_->view->acceptFiles(accept != FALSE);
}

void CFrameWnd::ShowControlBar(CWnd* bar, BOOL show, BOOL) {
  if (bar) bar->ShowWindow(show ? SW_SHOW : SW_HIDE);
}

BOOL GetCursorPos(POINT* point) {
  *point = tarn::host::pointer();
  return TRUE;
}

const ACHAR* AfxRegisterWndClass(UINT classStyle, const ACHAR* cursor) {
  static std::map<std::pair<UINT, std::wstring>, std::wstring> names;
  std::wstring& name = names[{classStyle, cursor ? cursor : L""}];
  if (name.empty())
    name = L"Window:" + std::to_wstring(classStyle) + L":" + (cursor ? cursor : L"");
  return name.c_str();
}
