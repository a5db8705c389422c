// Windows: messages, place, visibility.
#pragma once

#include <memory>

#include "afxmsg_.h"
#include "afxstr.h"
#include "afxtypes.h"

namespace tarn::host {
struct WindowAccess;
struct WindowState;
}  // namespace tarn::host

/// A window. Coordinates are pixels, y down; those of a child count from its parent's client area.
class ACADHOST_EXPORT CWnd {
 public:
  CWnd();
  virtual ~CWnd();
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  /// Null before the window is made and after it is gone.
  HWND GetSafeHwnd() const;
  /// Handled before the call returns; 0 when the window does not know the message.
  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
  /// Gives the window the keyboard. Returns the window that had it, null when unknown.
  virtual CWnd* SetFocus();
  virtual BOOL DestroyWindow();

  CWnd* GetParent() const;
  /// The child with that id, or null.
  CWnd* GetDlgItem(int id) const;
  int GetDlgCtrlID() const;
  /// The same styles with some taken away and some added; nothing is made anew.
  BOOL ModifyStyle(DWORD remove, DWORD add, UINT flags = 0);
  DWORD GetStyle() const;
  void GetWindowText(CString& text) const;

  BOOL ShowWindow(int show);
  /// Its own switch; a window inside a hidden one may be switched on.
  BOOL IsWindowVisible() const;
  void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE);
  void MoveWindow(const RECT* rect, BOOL repaint = TRUE);
  void GetClientRect(RECT* rect) const;
  void GetWindowRect(RECT* rect) const;  ///< screen coordinates
  void ScreenToClient(POINT* point) const;
  void ScreenToClient(RECT* rect) const;
  void ClientToScreen(POINT* point) const;
  /// Files dropped on the window come as WM_DROPFILES.
  void DragAcceptFiles(BOOL accept = TRUE);

  /// A key or mouse message before the window gets it. Not 0: it is done with.
  virtual BOOL PreTranslateMessage(MSG* message);

 protected:
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  static const AFX_MSGMAP* GetThisMessageMap();
  virtual const AFX_MSGMAP* GetMessageMap() const;
  /// Once the window is there, before WM_CREATE.
  virtual void windowMade() {}

  int OnCreate(LPCREATESTRUCT create);
  void OnSize(UINT type, int width, int height);
  void OnContextMenu(CWnd* window, CPoint point);

 private:
  friend struct tarn::host::WindowAccess;
  std::unique_ptr<tarn::host::WindowState> state_;
};

class ACADHOST_EXPORT CFrameWnd : public CWnd {
 public:
  /// Shows or hides a bar of the frame.
  void ShowControlBar(CWnd* bar, BOOL show, BOOL delay);
};
class ACADHOST_EXPORT CMDIFrameWnd : public CFrameWnd {};

/// The host's main frame; null when there is no host.
ACADHOST_EXPORT CWnd* AfxGetMainWnd();
/// A name for windows of these properties. The same ones give the same name.
ACADHOST_EXPORT const ACHAR* AfxRegisterWndClass(UINT classStyle, const ACHAR* cursor);
/// The arrow.
#define IDC_ARROW ACRX_T("arrow")
