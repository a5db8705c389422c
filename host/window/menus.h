// Menus and tool bars: each entry is a command line, so that menu, keys and typing do the same.
#pragma once

#include <QStringList>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QAction;
class QMainWindow;
class QMenu;
class QObject;
class QToolBar;

namespace tarn::host {

/// What entries call. All must be set.
struct MenuHooks {
  std::function<void(const char*)> run;   ///< a command line; what waits is cancelled first
  std::function<void(const char*)> look;  ///< one that changes only the view: what waits goes on
  std::function<void()> addImages;
  std::function<void()> regenerate;
  std::function<void()> quit;
  std::function<void()> guide;
  std::function<void()> about;
  std::function<QStringList()> recentFiles;  ///< newest first
  std::function<void(const QString&)> openFile;
  std::function<std::vector<std::string>()> commands;  ///< names of all that there are now
};

class Menus {
 public:
  /// Makes the tool bars; the window must outlive the object.
  Menus(QMainWindow& window, MenuHooks hooks);
  ~Menus();

  /// Fills menu bar and tool bars in the words and colours of now, in the place of what was there.
  void build();
  /// Where the window adds switches of its own; another one after each build().
  QMenu& view() { return *view_; }
  QMenu& edit() { return *edit_; }
  QToolBar& standardBar() { return *bars_.front(); }

 private:
  struct Entry;
  struct Table;
  static const std::vector<Table>& tables();
  void add(QMenu& menu, const Entry& entry);
  void addRecent(QMenu& menu);
  void addOthers(QMenu& menu);

  QMainWindow& window_;
  MenuHooks hooks_;
  std::unique_ptr<QObject> entries_;  ///< owns the actions of one build
  std::vector<QToolBar*> bars_;       ///< belong to the window
  QMenu* view_ = nullptr;             ///< belong to the window
  QMenu* edit_ = nullptr;
};

}  // namespace tarn::host
