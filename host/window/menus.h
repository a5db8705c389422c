// Menus and tool bar: each entry is a command line, so that menu, keys and typing do the same.
#pragma once

#include <functional>

class QMainWindow;

namespace tarn::host {

/// What entries call. All must be set.
struct MenuHooks {
  std::function<void(const char*)> run;   ///< a command line; what waits is cancelled first
  std::function<void(const char*)> look;  ///< one that changes only the view: what waits goes on
  std::function<void()> addImages;
  std::function<void()> regenerate;
  std::function<void()> about;
};

/// Fills menu bar and tool bar of a window; the entries live as long as it does.
void buildMenus(QMainWindow& window, const MenuHooks& hooks);

}  // namespace tarn::host
