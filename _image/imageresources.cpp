// The module's dialog and menu, in Chinese and English.
#include <iterator>

#include "_image/imagepanelids.h"
#include "afxcmn.h"
#include "afxctrls.h"
#include "tarnresources.h"

namespace tarn::image {
namespace {

constexpr TarnControlResource kControls[] = {
    {IDC_IMAGE_TREE, TarnControl::kTree, L"",
     WS_CHILD | WS_VISIBLE | WS_BORDER | WS_HSCROLL | TVS_HASBUTTONS | TVS_HASLINES |
         TVS_LINESATROOT | TVS_CHECKBOXES | TVS_SINGLEEXPAND | TVS_INFOTIP,
     0, 0, 271, 185},
    {IDC_PANEL_OK, TarnControl::kButton, L"确定", WS_CHILD | BS_DEFPUSHBUTTON, 214, 164, 50, 14},
    {IDC_IMAGE_LIST, TarnControl::kCheckList, L"",
     WS_CHILD | LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_SORT, 7, 7, 257, 150},
    {IDC_LIST_ADD, TarnControl::kButton, L"添加", WS_CHILD, 7, 164, 40, 14},
    {IDC_LIST_DELETE, TarnControl::kButton, L"删除", WS_CHILD, 51, 164, 40, 14},
    {IDC_LIST_ALL, TarnControl::kButton, L"全选", WS_CHILD, 95, 164, 40, 14},
    {IDC_LIST_INVERT, TarnControl::kButton, L"反选", WS_CHILD, 139, 164, 40, 14},
};

constexpr TarnMenuItem kChineseMenu[] = {
    {0, 0, L"影像弹出菜单"},
    {ID_ADD_IMAGE, 1, L"添加影像"},
    {ID_RECTIFY_IMAGE, 1, L"纠正影像"},
    {ID_ANTI_ALIASING, 1, L"抗锯齿"},
    {0, 1, L"拉伸方式"},
    {ID_STRETCH_EQUALISE, 2, L"均衡化"},
    {ID_STRETCH_DEVIATION, 2, L"标准偏差"},
    {ID_STRETCH_NONE, 2, L"恢复"},
    {ID_REMOVE_IMAGE, 1, L"删除影像"},
    {ID_REMOVE_ALL, 1, L"删除所有影像"},
    {ID_MOVE_UP, 1, L"上移"},
    {ID_MOVE_DOWN, 1, L"下移"},
};

constexpr TarnMenuItem kEnglishMenu[] = {
    {0, 0, L"image pop-up menu"},
    {ID_ADD_IMAGE, 1, L"Add image"},
    {ID_RECTIFY_IMAGE, 1, L"Rectify image"},
    {ID_ANTI_ALIASING, 1, L"Anti aliasing"},
    {0, 1, L"Stretching method"},
    {ID_STRETCH_EQUALISE, 2, L"Equalization"},
    {ID_STRETCH_DEVIATION, 2, L"Standard deviation"},
    {ID_STRETCH_NONE, 2, L"Restore"},
    {ID_REMOVE_IMAGE, 1, L"Remove image"},
    {ID_REMOVE_ALL, 1, L"Remove all images"},
};

constexpr TarnDialogResource kDialogs[] = {
    {IDD_IMAGE_LIST, TarnLanguage::kChinese, L"MS Shell Dlg", 9, 271, 185, kControls,
     std::size(kControls)},
};

constexpr TarnMenuResource kMenus[] = {
    {IDR_IMAGE_MENU, TarnLanguage::kChinese, kChineseMenu, std::size(kChineseMenu)},
    {IDR_IMAGE_MENU, TarnLanguage::kEnglish, kEnglishMenu, std::size(kEnglishMenu)},
};

/// Enters the tables when the module is loaded.
struct Entered {
  Entered() {
    for (const TarnDialogResource& dialog : kDialogs) tarnAddDialogResource(dialog);
    for (const TarnMenuResource& menu : kMenus) tarnAddMenuResource(menu);
  }
};
const Entered entered;

}  // namespace
}  // namespace tarn::image
