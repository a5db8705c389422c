#include <algorithm>
#include <utility>

#include "afxmenu.h"
#include "afxwnd.h"
#include "host/ui/menumodel.h"
#include "host/ui/resources.h"
#include "host/ui/uibackend.h"
#include "host/ui/uiservices.h"

using tarn::host::MenuItem;
using tarn::host::MenuModel;

namespace tarn::host {

const MenuItem* findItem(const MenuModel& menu, UINT id) {
  for (const MenuItem& item : menu.items) {
    if (!item.sub && item.id == id && !item.text.empty()) return &item;
    const MenuItem* inside = item.sub ? findItem(*item.sub, id) : nullptr;
    if (inside) return inside;
  }
  return nullptr;
}

namespace {

MenuItem* findChangeable(MenuModel& menu, UINT id) {
  return const_cast<MenuItem*>(findItem(menu, id));
}

/// The items of the table from `at` on that are as deep as that one or deeper.
std::shared_ptr<MenuModel> buildMenu(const TarnMenuResource& table, size_t& at) {
  auto menu = std::make_shared<MenuModel>();
  const int depth = at < table.itemCount ? table.items[at].depth : 0;
  while (at < table.itemCount && table.items[at].depth >= depth) {
    if (table.items[at].depth > depth) {
      menu->items.back().sub = buildMenu(table, at);
      continue;
    }
    const TarnMenuItem& item = table.items[at++];
    menu->items.push_back({item.id, item.text ? item.text : L"", false, nullptr});
  }
  return menu;
}

}  // namespace

}  // namespace tarn::host

CMenu::CMenu() = default;
CMenu::~CMenu() = default;

BOOL CMenu::CreatePopupMenu() {
  menu_ = std::make_shared<MenuModel>();
  return TRUE;
}

BOOL CMenu::LoadMenu(UINT id) {
  const TarnMenuResource* table = tarn::host::findMenu(id);
  if (!table) return FALSE;
  size_t at = 0;
  menu_ = tarn::host::buildMenu(*table, at);
  return TRUE;
}

BOOL CMenu::DestroyMenu() {
  sub_.reset();
  return std::exchange(menu_, nullptr) != nullptr;
}

BOOL CMenu::Attach(HMENU menu) {
  if (!menu) return FALSE;
  menu_ = static_cast<MenuModel*>(menu)->shared_from_this();
  return TRUE;
}

HMENU CMenu::Detach() {
  HMENU handle = menu_.get();
  menu_.reset();
  return handle;
}

HMENU CMenu::GetSafeHmenu() const {
  return menu_.get();
}

CMenu* CMenu::GetSubMenu(int position) const {
  if (!menu_ || position < 0 || position >= static_cast<int>(menu_->items.size())) return nullptr;
  const MenuItem& item = menu_->items[static_cast<size_t>(position)];
  if (!item.sub) return nullptr;
  sub_ = std::make_unique<CMenu>();
  sub_->menu_ = item.sub;
  return sub_.get();
}

BOOL CMenu::AppendMenu(UINT flags, UINT_PTR id, const ACHAR* text) {
  if (!menu_) return FALSE;
  const bool separator = (flags & MF_SEPARATOR) != 0;
  menu_->items.push_back({separator ? 0 : static_cast<UINT>(id), separator || !text ? L"" : text,
                          (flags & MF_CHECKED) != 0, nullptr});
  return TRUE;
}

BOOL CMenu::DeleteMenu(UINT id, UINT flags) {
  if (!menu_) return FALSE;
  auto& items = menu_->items;
  const auto found =
      (flags & MF_BYPOSITION) != 0
          ? items.begin() + std::min<std::ptrdiff_t>(id, static_cast<std::ptrdiff_t>(items.size()))
          : std::find_if(items.begin(), items.end(),
                         [&](const MenuItem& item) { return !item.sub && item.id == id; });
  if (found == items.end()) return FALSE;
  items.erase(found);
  return TRUE;
}

DWORD CMenu::CheckMenuItem(UINT id, UINT flags) {
  MenuItem* item = menu_ ? tarn::host::findChangeable(*menu_, id) : nullptr;
  if (!item) return static_cast<DWORD>(-1);
  return std::exchange(item->checked, (flags & MF_CHECKED) != 0) ? MF_CHECKED : MF_UNCHECKED;
}

BOOL CMenu::TrackPopupMenu(UINT, int x, int y, CWnd* window) {
  tarn::host::UiBackend* backend = tarn::host::uiServices().backend;
  if (!menu_ || !backend) return FALSE;
  const UINT chosen = backend->popupMenu(*menu_, {x, y});
  if (chosen != 0 && window) window->SendMessage(WM_COMMAND, MAKEWPARAM(chosen, 0));
  return TRUE;
}
