// The menu of the right button over the drawing.
#pragma once

#include <QPoint>
#include <functional>
#include <string>

class QWidget;

namespace tarn::host {

struct CanvasMenu {
  bool waits = false;       ///< a command waits for an input
  bool wantsPoint = false;  ///< and it is a point
  bool hasChosen = false;   ///< entities were chosen before a command
  bool mayPaste = false;
  std::string lastCommand;                ///< empty: none to repeat
  std::function<void(const char*)> run;   ///< a command
  std::function<void(const char*)> look;  ///< one that changes only the view
  std::function<void(const char*)> give;  ///< an answer for what waits
  std::function<void()> escape;
};

/// Opens it and returns at once.
void openCanvasMenu(QWidget& window, QPoint onScreen, const CanvasMenu& form);

}  // namespace tarn::host
