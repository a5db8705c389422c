// The bar that the image list panel stands in, and opening it.
#pragma once

#include "adui.h"

class ImageDialog;

class CCommonDockControlBar : public CAdUiDockControlBar {
 public:
  /// The dialog that is made inside when the bar is; not owned.
  void SetChild(ImageDialog* child, UINT resource);
  BOOL Create(CWnd* parent, const ACHAR* title);

 protected:
  afx_msg int OnCreate(LPCREATESTRUCT create);
  void SizeChanged(CRect* client, BOOL floating, int flags) override;
  BOOL AddCustomMenuItems(LPARAM menu) override;
  DECLARE_MESSAGE_MAP()

 private:
  ImageDialog* m_child = nullptr;
  UINT m_resource = 0;
};

namespace tarn::image {

/// Makes the panel at the first call, and shows it.
void openImageList();
/// Adds images through a panel of its own that nobody sees.
void addImagesThroughPanel();
/// At unload.
void destroyImagePanel();

}  // namespace tarn::image
