#include <algorithm>

#include "afxctrls.h"

int CCheckListBox::AddString(const ACHAR* text) {
  const bool sorted = (GetStyle() & LBS_SORT) != 0;
  const auto isEarlier = [](const ACHAR* wanted, const Item& item) {
    return item.text.CompareNoCase(wanted) > 0;
  };
  const auto place =
      sorted ? std::upper_bound(items_.begin(), items_.end(), text, isEarlier) : items_.end();
  const auto made = items_.insert(place, {CString(text)});
  return static_cast<int>(made - items_.begin());
}

void CCheckListBox::GetText(int index, CString& text) const {
  text = has(index) ? items_[static_cast<size_t>(index)].text : CString();
}

int CCheckListBox::GetCheck(int index) const {
  return has(index) ? items_[static_cast<size_t>(index)].check : BST_UNCHECKED;
}

void CCheckListBox::SetCheck(int index, int check) {
  if (has(index)) items_[static_cast<size_t>(index)].check = check;
}

int CCheckListBox::SetCurSel(int index) {
  selected_ = has(index) ? index : LB_ERR;
  return selected_;
}

UINT CCheckListBox::ItemFromPoint(CPoint point, BOOL& outside) const {
  const int row = point.y / kRowHeight;
  outside = point.y < 0 || !has(row);
  return static_cast<UINT>(std::clamp(row, 0, std::max(0, GetCount() - 1)));
}
