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
     WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_CHECKBOXES |
         TVS_SINGLEEXPAND | TVS_INFOTIP,
     0, 0, 271, 185},
    {IDC_PANEL_OK, TarnControl::kButton, L"确定", WS_CHILD, 214, 164, 50, 14},
    {IDC_IMAGE_LIST, TarnControl::kCheckList, L"",
     WS_CHILD | LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_SORT, 7, 7, 257, 150},
    {IDC_LIST_ADD, TarnControl::kButton, L"添加", WS_CHILD, 7, 164, 40, 14},
    {IDC_LIST_DELETE, TarnControl::kButton, L"删除", WS_CHILD, 51, 164, 40, 14},
    {IDC_LIST_ALL, TarnControl::kButton, L"全选", WS_CHILD, 95, 164, 40, 14},
    {IDC_LIST_INVERT, TarnControl::kButton, L"反选", WS_CHILD, 139, 164, 40, 14},
};

constexpr TarnMenuItem kChineseMenu[] = {
    {0, L"影像弹出菜单", 0},
    {ID_ADD_IMAGE, L"添加影像", 1},
    {ID_RECTIFY_IMAGE, L"纠正影像", 1},
    {ID_ANTI_ALIASING, L"抗锯齿", 1},
    {0, L"拉伸方式", 1},
    {ID_STRETCH_EQUALISE, L"均衡化", 2},
    {ID_STRETCH_DEVIATION, L"标准偏差", 2},
    {ID_STRETCH_NONE, L"恢复", 2},
    {ID_REMOVE_IMAGE, L"删除影像", 1},
    {ID_REMOVE_ALL, L"删除所有影像", 1},
    {ID_MOVE_UP, L"上移", 1},
    {ID_MOVE_DOWN, L"下移", 1},
};

constexpr TarnMenuItem kEnglishMenu[] = {
    {0, L"image pop-up menu", 0},
    {ID_ADD_IMAGE, L"Add image", 1},
    {ID_RECTIFY_IMAGE, L"Rectify image", 1},
    {ID_ANTI_ALIASING, L"Anti aliasing", 1},
    {0, L"Stretching method", 1},
    {ID_STRETCH_EQUALISE, L"Equalization", 2},
    {ID_STRETCH_DEVIATION, L"Standard deviation", 2},
    {ID_STRETCH_NONE, L"Restore", 2},
    {ID_REMOVE_IMAGE, L"Remove image", 1},
    {ID_REMOVE_ALL, L"Remove all images", 1},
};

constexpr TarnDialogResource kDialogs[] = {
    {IDD_IMAGE_LIST, TarnLanguage::kChinese, 271, 185, kControls, std::size(kControls)},
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
