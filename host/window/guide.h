// First steps: what one sees and five things to try, in a dock that can be closed for good.
#pragma once

#include <QDockWidget>
#include <functional>

class QCheckBox;
class QLabel;

namespace tarn::host {

class Guide final : public QDockWidget {
 public:
  /// `closedForGood` is called when it is closed with the box checked.
  Guide(QWidget* parent, std::function<void()> closedForGood);
  void speakAgain();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  std::function<void()> closedForGood_;
  QLabel* text_;  ///< these belong to the dock
  QCheckBox* never_;
};

}  // namespace tarn::host
