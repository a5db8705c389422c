// Pop-up menus.
#pragma once

#include <memory>

#include "afxstr.h"
#include "afxtypes.h"

namespace tarn::host {
struct MenuModel;
}  // namespace tarn::host

class CWnd;

enum : UINT {
  MF_BYCOMMAND = 0x0,
  MF_STRING = 0x0,
  MF_UNCHECKED = 0x0,
  MF_CHECKED = 0x8,
  MF_BYPOSITION = 0x400,
  MF_SEPARATOR = 0x800,
};
enum : UINT { TPM_LEFTALIGN = 0x0, TPM_RIGHTBUTTON = 0x2 };

class ACADHOST_EXPORT CMenu {
 public:
  CMenu();
  ~CMenu();
  CMenu(const CMenu&) = delete;
  CMenu& operator=(const CMenu&) = delete;

  BOOL CreatePopupMenu();
  /// A menu resource; FALSE when no module has one of that id.
  BOOL LoadMenu(UINT id);
  /// Lets the menu go; one that was attached lives on.
  BOOL DestroyMenu();
  BOOL Attach(HMENU menu);
  HMENU Detach();
  HMENU GetSafeHmenu() const;

  /// The menu at a position; null when there is none. Valid as long as this one.
  CMenu* GetSubMenu(int position) const;
  BOOL AppendMenu(UINT flags, UINT_PTR id = 0, const ACHAR* text = nullptr);
  BOOL DeleteMenu(UINT id, UINT flags);
  /// Sets or takes the mark, also in sub-menus. The earlier state, or -1 when there is no such
  /// item.
  DWORD CheckMenuItem(UINT id, UINT flags);

  /// Shows the menu at a place of the screen; what is chosen comes to the window as WM_COMMAND.
  BOOL TrackPopupMenu(UINT flags, int x, int y, CWnd* window);

 private:
  std::shared_ptr<tarn::host::MenuModel> menu_;
  mutable std::unique_ptr<CMenu> sub_;
};
