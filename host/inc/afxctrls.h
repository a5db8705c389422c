// Buttons and lists.
#pragma once

#include <memory>
#include <vector>

#include "afxwnd.h"

class ACADHOST_EXPORT CButton : public CWnd {};

enum : DWORD { BS_PUSHBUTTON = 0x0, BS_DEFPUSHBUTTON = 0x1 };
enum : DWORD { LBS_NOTIFY = 0x1, LBS_SORT = 0x2, LBS_OWNERDRAWFIXED = 0x10, LBS_HASSTRINGS = 0x40 };
enum : int { LB_ERR = -1 };
enum : int { BST_UNCHECKED = 0, BST_CHECKED = 1, BST_INDETERMINATE = 2 };

/// A list of texts with check boxes. Rows are kRowHeight pixels high.
class ACADHOST_EXPORT CCheckListBox : public CWnd {
 public:
  static constexpr int kRowHeight = 16;

  /// The index of the new item, in its place when the list is sorted.
  int AddString(const ACHAR* text);
  void ResetContent() { items_.clear(), selected_ = LB_ERR; }
  int GetCount() const { return static_cast<int>(items_.size()); }
  void GetText(int index, CString& text) const;
  int GetCheck(int index) const;
  void SetCheck(int index, int check);
  int GetCurSel() const { return selected_; }
  int SetCurSel(int index);
  /// The nearest item of a client point; `outside` says that the point is on none.
  UINT ItemFromPoint(CPoint point, BOOL& outside) const;

 private:
  struct Item {
    CString text;
    int check = BST_UNCHECKED;
  };
  bool has(int index) const { return index >= 0 && index < GetCount(); }

  std::vector<Item> items_;
  int selected_ = LB_ERR;
};
