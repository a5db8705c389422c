// Message boxes and file dialogs.
#pragma once

#include <memory>

#include "afxstr.h"
#include "afxtypes.h"

class CWnd;

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

/// Shows a box and returns the button pressed (IDOK, IDYES ...).
ACADHOST_EXPORT int AfxMessageBox(const ACHAR* text, UINT type = MB_OK, UINT helpId = 0);

/// What a file dialog is asked with, beside its constructor.
struct OPENFILENAME {
  ACHAR* lpstrFile = nullptr;  ///< buffer of the application; names come through the dialog
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

  /// IDOK or IDCANCEL. However many names are chosen, all can be walked through.
  INT_PTR DoModal();
  /// Full path of the first file.
  CString GetPathName() const;
  /// Walks through the chosen files in the order chosen; null position at the end.
  POSITION GetStartPosition() const;
  CString GetNextPathName(POSITION& position) const;

  OPENFILENAME m_ofn;

 protected:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// Asks for a folder.
class ACADHOST_EXPORT CFolderPickerDialog : public CFileDialog {
 public:
  explicit CFolderPickerDialog(const ACHAR* folder = nullptr, DWORD flags = 0,
                               CWnd* parent = nullptr);
  /// Full path of the chosen folder.
  CString GetFolderPath() const { return GetPathName(); }
};
