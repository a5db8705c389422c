// Ways through the window by keys alone: F6 from part to part, Ctrl+Tab through the drawings,
// Ctrl+PgDown through their sheets.
#pragma once

#include <QObject>
#include <functional>
#include <vector>

class QMainWindow;
class QTabBar;
class QWidget;

namespace tarn::host {

class KeyboardWays : public QObject {
 public:
  /// All must outlive the object. F6 goes from `home` to `text` and on to what stands in the docks
  /// that are shown, Shift+F6 the other way.
  KeyboardWays(QMainWindow& window, QWidget& home, QWidget& text, QTabBar& drawings,
               QTabBar& sheets);

 private:
  void addKey(const char* keys, const std::function<void()>& act);
  std::vector<QWidget*> parts() const;
  void goOn(int by) const;

  QMainWindow& window_;
  QWidget& home_;
  QWidget& text_;
};

}  // namespace tarn::host
