// Dialogs made from resources.
#pragma once

#include <memory>
#include <vector>

#include "afxwnd.h"

/// Joins the members of a dialog to its controls.
struct CDataExchange {
  CWnd* m_pDlgWnd = nullptr;
  BOOL m_bSaveAndValidate = FALSE;
};

/// `control` stands for the dialog's control of that id from here on.
ACADHOST_EXPORT void DDX_Control(CDataExchange* exchange, int id, CWnd& control);

class ACADHOST_EXPORT CDialog : public CWnd {
 public:
  explicit CDialog(UINT resource, CWnd* parent = nullptr);
  ~CDialog() override;

  /// Makes the window and its controls from the resource, hidden. FALSE when no module has it.
  virtual BOOL Create(UINT resource, CWnd* parent = nullptr);
  BOOL DestroyWindow() override;
  virtual BOOL OnInitDialog();

 protected:
  virtual void DoDataExchange(CDataExchange* exchange);
  DECLARE_MESSAGE_MAP()

 private:
  UINT resource_;
  std::vector<std::unique_ptr<CWnd>> controls_;  ///< those without a member
};
