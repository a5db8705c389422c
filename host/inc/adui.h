// Dialogs and dock bars of the host's own user interface.
#pragma once

#include "afxdialog.h"
#include "afxwnd.h"

namespace tarn::host {
struct DockAccess;
}  // namespace tarn::host

class ACADHOST_EXPORT CAdUiBaseDialog : public CDialog {
 public:
  explicit CAdUiBaseDialog(UINT resource, CWnd* parent = nullptr) : CDialog(resource, parent) {}

 protected:
  DECLARE_MESSAGE_MAP()
};

enum : DWORD {
  CBRS_ALIGN_LEFT = 0x1000,
  CBRS_ALIGN_RIGHT = 0x4000,
  CBRS_ALIGN_ANY = 0xF000,
};
enum : UINT { AFX_IDW_DOCKBAR_LEFT = 0xE81C, AFX_IDW_DOCKBAR_RIGHT = 0xE81D };

/// A bar that floats or docks at the frame. Its place and size are remembered by its title between
/// sessions of a program with windows.
class ACADHOST_EXPORT CAdUiDockControlBar : public CWnd {
 public:
  CAdUiDockControlBar();
  ~CAdUiDockControlBar() override;

  /// Makes the bar at the frame, where it was last, else floating; WM_CREATE follows. FALSE when
  /// OnCreate refuses.
  BOOL Create(const ACHAR* className, const ACHAR* title, DWORD style, const RECT& rect,
              CWnd* parent, UINT id);
  BOOL DestroyWindow() override;
  /// Where it may dock: CBRS_ALIGN_ bits.
  void EnableDocking(DWORD sides);
  /// Takes it to where it was when last seen, or, never seen, to `side` (AFX_IDW_DOCKBAR_ ids).
  void RestoreControlBar(UINT side);
  BOOL IsFloating() const;

 protected:
  int OnCreate(LPCREATESTRUCT create);
  /// The client area has another size.
  virtual void SizeChanged(CRect* client, BOOL floating, int flags);
  /// The bar's menu is about to be shown: items may be added and removed. FALSE: no menu.
  virtual BOOL AddCustomMenuItems(LPARAM menu);
  DECLARE_MESSAGE_MAP()

 private:
  friend struct tarn::host::DockAccess;
  std::unique_ptr<tarn::host::DockAccess> access_;
};
