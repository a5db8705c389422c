// Plain types and numbers of the window classes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "adesk.h"

using BOOL = int;
using UINT = unsigned int;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG_PTR = std::uintptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
// As systems name what stands behind them, so that their own declarations may stand beside these.
using HWND = struct HWND__*;
using POSITION = const void*;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;

/// A menu, as messages carry it; CMenu::Attach makes it usable.
using HMENU = void*;
/// Files dropped on a window, as WM_DROPFILES carries them.
using HDROP = const void*;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

enum : UINT {
  WM_CREATE = 0x0001,
  WM_SIZE = 0x0005,
  WM_COPYDATA = 0x004A,
  WM_NOTIFY = 0x004E,
  WM_CONTEXTMENU = 0x007B,
  WM_KEYDOWN = 0x0100,
  WM_COMMAND = 0x0111,
  WM_MOUSEMOVE = 0x0200,
  WM_LBUTTONDOWN = 0x0201,
  WM_LBUTTONUP = 0x0202,
  WM_MBUTTONDOWN = 0x0207,
  WM_MBUTTONUP = 0x0208,
  WM_MOUSEWHEEL = 0x020A,
  WM_DROPFILES = 0x0233,
};

enum : WPARAM { VK_RETURN = 13, VK_ESCAPE = 27 };

enum : DWORD {
  WS_CHILD = 0x40000000,
  WS_VISIBLE = 0x10000000,
  WS_CLIPCHILDREN = 0x02000000,
  WS_BORDER = 0x00800000,
  WS_HSCROLL = 0x00100000,
};
enum : UINT { CS_DBLCLKS = 0x0008 };
enum : int { SW_HIDE = 0, SW_SHOW = 5 };

/// Codes of WM_COMMAND and WM_NOTIFY.
enum : UINT {
  BN_CLICKED = 0,
  LBN_DBLCLK = 2,
  NM_CLICK = static_cast<UINT>(-2),
  NM_DBLCLK = static_cast<UINT>(-3),
  NM_RCLICK = static_cast<UINT>(-5),
};

inline WPARAM MAKEWPARAM(UINT low, UINT high) {
  return (low & 0xffffU) | (static_cast<WPARAM>(high & 0xffffU) << 16);
}

struct POINT {
  LONG x = 0;
  LONG y = 0;
};

struct SIZE {
  LONG cx = 0;
  LONG cy = 0;
};

struct RECT {
  LONG left = 0;
  LONG top = 0;
  LONG right = 0;
  LONG bottom = 0;
};

class CPoint : public POINT {
 public:
  CPoint() = default;
  CPoint(int px, int py) : POINT{px, py} {}
  CPoint(const POINT& point) : POINT(point) {}
};

class CSize : public SIZE {
 public:
  CSize() = default;
  CSize(int width, int height) : SIZE{width, height} {}
};

class CRect : public RECT {
 public:
  CRect() = default;
  CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
  CRect(const RECT& rect) : RECT(rect) {}
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
};

struct tagMSG {
  HWND hwnd = nullptr;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  DWORD time = 0;
  POINT pt;
};
using MSG = tagMSG;

/// Data of WM_COPYDATA; owned by the sender, valid during the call.
struct COPYDATASTRUCT {
  ULONG_PTR dwData = 0;
  DWORD cbData = 0;  ///< bytes at lpData
  void* lpData = nullptr;
};

/// What WM_NOTIFY carries first.
struct NMHDR {
  HWND hwndFrom = nullptr;
  std::uintptr_t idFrom = 0;
  UINT code = 0;
};

/// What WM_CREATE carries.
struct CREATESTRUCT {
  const ACHAR* lpszName = nullptr;
  const ACHAR* lpszClass = nullptr;
  DWORD style = 0;
};
using LPCREATESTRUCT = CREATESTRUCT*;

/// Where the mouse was for the message that is being handled; screen coordinates.
ACADHOST_EXPORT BOOL GetCursorPos(POINT* point);
/// Number of the files, or with their index the length of one path, which goes to `name`.
ACADHOST_EXPORT UINT DragQueryFile(HDROP drop, UINT file, ACHAR* name, UINT capacity);
