// The image list panel: a tree of the current drawing's images and what can be done with them.
#pragma once

#include <string>
#include <vector>

#include "_image/imagepanelids.h"
#include "adui.h"
#include "afxwin.h"

class CDocData;

/// The image entity is looked up in the document's record each time: undo, erasing and other
/// drawings may change it at any time.
class ImageDialog : public CAdUiBaseDialog {
 public:
  enum { IDD = tarn::image::IDD_IMAGE_LIST };

  explicit ImageDialog(CWnd* parent = nullptr);

  BOOL OnInitDialog() override;
  BOOL PreTranslateMessage(MSG* message) override;

  /// Builds the list anew from the current drawing. Does nothing before the window is made.
  void RefreshList();
  /// The image whose item is the caret; empty when there is none, or the root is.
  std::wstring SelectedImage() const;
  /// Adds images as the menu command does; needs no window.
  void OnAddImages();

 protected:
  void DoDataExchange(CDataExchange* exchange) override;
  DECLARE_MESSAGE_MAP()

  afx_msg void OnSize(UINT type, int width, int height);
  afx_msg void OnContextMenu(CWnd* window, CPoint point);
  afx_msg void OnDropFiles(HDROP drop);

  // ---- The tree (imagedialog_menu.cpp, imagedialog_edit.cpp, imagedialog_view.cpp) ----------
  afx_msg void OnTreeRightClick(NMHDR* header, LRESULT* result);
  afx_msg void OnTreeClick(NMHDR* header, LRESULT* result);
  afx_msg void OnTreeDoubleClick(NMHDR* header, LRESULT* result);
  afx_msg void OnTreeTip(NMHDR* header, LRESULT* result);
  afx_msg void OnRemoveImage();
  afx_msg void OnRemoveAll();
  afx_msg void OnMoveUp();
  afx_msg void OnMoveDown();
  afx_msg void OnShowChosen();
  afx_msg void OnHideChosen();
  afx_msg void OnRelink();
  afx_msg void OnGeneratePyramid();
  afx_msg void OnRectifyImage();
  afx_msg void OnAntiAliasing();
  afx_msg void OnStretchEqualise();
  afx_msg void OnStretchDeviation();
  afx_msg void OnStretchNone();

  // ---- The hidden controls (imagedialog_hidden.cpp) ------------------------------------------
  afx_msg void OnListAdd();
  afx_msg void OnListDelete();
  afx_msg void OnListOk();
  afx_msg void OnListSelectAll();
  afx_msg void OnListInvert();
  afx_msg void OnListDoubleClick();
  afx_msg void OnListRightClick(NMHDR* header, LRESULT* result);

 private:
  HTREEITEM InsertRoot();
  void InsertImage(HTREEITEM root, const std::wstring& path, bool displayed);
  /// The hidden list shows what the tree shows.
  void FillHiddenList();
  std::vector<std::wstring> TreeOrder() const;
  /// All selected image items; the caret's image alone when no more are selected.
  std::vector<HTREEITEM> ChosenItems() const;
  void ShowRootMenu(CPoint at);
  void ShowImageMenu(CPoint at, CMenu& popup);
  void DisplayChosen(bool display);
  void MoveSelected(HTREEITEM other);
  void ApplyAntiAliasing(CDocData& record, bool on);
  void Stretch(int mode);

  CTreeCtrl m_tree;
  int m_itemCount = 0;
  CCheckListBox m_list;
  CMenu m_popup;
  bool m_antiAliasing = false;
  int m_stretchMode = -1;
  bool m_generatePyramid = true;
};

namespace tarn::image {

/// The panel's selected image; empty when there is no panel or no image item is selected.
std::wstring imageSelectedInPanel();

}  // namespace tarn::image
