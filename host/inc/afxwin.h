// The part of the window classes that applications of the host use, free of any toolkit: texts,
// points, messages, the frame, message boxes and file dialogs. Behind them stands the user
// interface of the running program, with windows or with lines of text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adesk.h"
#include "afxstr.h"

using BOOL = int;
using UINT = unsigned int;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG_PTR = std::uintptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using HWND = void*;
using POSITION = const void*;
using INT_PTR = std::intptr_t;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

enum : UINT {
  WM_COPYDATA = 0x004A,
  WM_MOUSEMOVE = 0x0200,
  WM_LBUTTONDOWN = 0x0201,
  WM_LBUTTONUP = 0x0202,
  WM_MBUTTONDOWN = 0x0207,
  WM_MBUTTONUP = 0x0208,
  WM_MOUSEWHEEL = 0x020A,
};

enum : UINT {
  MB_OK = 0x0,
  MB_OKCANCEL = 0x1,
  MB_YESNOCANCEL = 0x3,
  MB_YESNO = 0x4,
  MB_ICONERROR = 0x10,
  MB_ICONQUESTION = 0x20,
  MB_ICONWARNING = 0x30,
  MB_ICONINFORMATION = 0x40,
};

enum : int { IDOK = 1, IDCANCEL = 2, IDYES = 6, IDNO = 7 };

enum : DWORD {
  OFN_OVERWRITEPROMPT = 0x2,
  OFN_HIDEREADONLY = 0x4,
  OFN_ALLOWMULTISELECT = 0x200,
  OFN_PATHMUSTEXIST = 0x800,
  OFN_FILEMUSTEXIST = 0x1000,
};

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
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
};

struct MSG {
  HWND hwnd = nullptr;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  DWORD time = 0;
  POINT pt;
};

/// Data of WM_COPYDATA; owned by the sender, valid during the call.
struct COPYDATASTRUCT {
  ULONG_PTR dwData = 0;
  DWORD cbData = 0;  ///< bytes at lpData
  void* lpData = nullptr;
};

/// A window of the host. Not owned by applications.
class ACADHOST_EXPORT CWnd {
 public:
  virtual ~CWnd() = default;
  /// Handled before the call returns; 0 when the window does not know the message.
  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
  /// Gives the window the keyboard. Returns the window that had it, null when unknown.
  virtual CWnd* SetFocus();

 protected:
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
};

class ACADHOST_EXPORT CFrameWnd : public CWnd {};
class ACADHOST_EXPORT CMDIFrameWnd : public CFrameWnd {};

/// The host's main frame; null when there is no host.
ACADHOST_EXPORT CWnd* AfxGetMainWnd();

/// Shows a box and returns the button pressed (IDOK, IDYES ...).
ACADHOST_EXPORT int AfxMessageBox(const ACHAR* text, UINT type = MB_OK, UINT helpId = 0);

/// What a file dialog is asked with, beside its constructor.
struct OPENFILENAME {
  ACHAR* lpstrFile = nullptr;  ///< buffer for the names; only its size matters here
  DWORD nMaxFile = 260;        ///< its size in characters
  const ACHAR* lpstrTitle = nullptr;
  const ACHAR* lpstrInitialDir = nullptr;
  DWORD Flags = 0;
};

/// Asks for file names. With system variable FILEDIA 0 the question comes on the command line.
class ACADHOST_EXPORT CFileDialog {
 public:
  explicit CFileDialog(BOOL openFileDialog, const ACHAR* defaultExtension = nullptr,
                       const ACHAR* fileName = nullptr,
                       DWORD flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       const ACHAR* filter = nullptr, CWnd* parent = nullptr);
  ~CFileDialog();
  CFileDialog(const CFileDialog&) = delete;
  CFileDialog& operator=(const CFileDialog&) = delete;

  /// IDOK, or IDCANCEL: cancelled, or the chosen names do not fit into m_ofn.nMaxFile characters.
  INT_PTR DoModal();
  /// Full path of the first file.
  CString GetPathName() const;
  /// Walks through the chosen files in the order chosen; null position at the end.
  POSITION GetStartPosition() const;
  CString GetNextPathName(POSITION& position) const;

  OPENFILENAME m_ofn;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};
