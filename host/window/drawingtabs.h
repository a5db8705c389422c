// The open drawings as tabs above the canvas, and the sheets of the current one below it. They show
// what the host says and hand clicks on; they change nothing by themselves.
#pragma once

#include <QString>
#include <QTabBar>
#include <functional>
#include <string>
#include <vector>

namespace tarn::host {

struct DrawingTab {
  QString title;
  QString path;
  bool isModified = false;
};

class DrawingTabs final : public QTabBar {
 public:
  struct Hooks {
    std::function<void(int)> chosen;  ///< another one than the current
    std::function<void(int)> closed;
  };
  explicit DrawingTabs(Hooks hooks);
  void show(const std::vector<DrawingTab>& drawings, int current);
  void speakAgain();

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void addCross(int index);

  Hooks hooks_;
  bool filling_ = false;
};

class SheetTabs final : public QTabBar {
 public:
  struct Hooks {
    std::function<void(const std::string&)> chosen;  ///< name of a layout
    std::function<void(const std::string&, QPoint)> menuWanted;
  };
  explicit SheetTabs(Hooks hooks);
  void show(const std::vector<std::string>& layouts, int current);

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  Hooks hooks_;
  std::vector<std::string> layouts_;
  bool filling_ = false;
};

}  // namespace tarn::host
