// First steps: what one sees and five things to try, in a dock that can be closed for good.
#pragma once

#include <QDockWidget>
#include <functional>

class QCheckBox;
class QLabel;
class QScrollArea;

namespace tarn::host {

class Guide final : public QDockWidget {
 public:
  /// `chosen` hears of every choice whether it shall not come again, however it is left afterwards.
  Guide(QWidget* parent, bool isNever, std::function<void(bool)> chosen);
  void speakAgain();

 private:
  QLabel* text_;  ///< these belong to the dock
  QScrollArea* scroll_;
  QCheckBox* never_;
};

}  // namespace tarn::host
