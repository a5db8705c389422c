// What stands in a menu.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "afxtypes.h"

namespace tarn::host {

struct MenuModel;

struct MenuItem {
  UINT id = 0;
  std::wstring text;  ///< empty: a separator, unless there is a sub-menu
  bool checked = false;
  std::shared_ptr<MenuModel> sub;
};

struct MenuModel : std::enable_shared_from_this<MenuModel> {
  std::vector<MenuItem> items;
};

/// The item of that id, also in sub-menus; null when there is none.
ACADHOST_EXPORT const MenuItem* findItem(const MenuModel& menu, UINT id);

}  // namespace tarn::host
