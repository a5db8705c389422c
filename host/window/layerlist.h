// The layers of the current drawing in a dock: shown, switched, renamed. It knows nothing of the
// drawing; what is clicked goes to its hooks.
#pragma once

#include <QDockWidget>
#include <functional>
#include <string>
#include <vector>

#include "host/editor/layeredits.h"

class QTableWidget;
class QToolBar;

namespace tarn::host {

class LayerList final : public QDockWidget {
 public:
  struct Hooks {
    std::function<void()> add;
    std::function<void(AcDbObjectId)> remove;
    std::function<void(AcDbObjectId)> makeCurrent;
    std::function<void(AcDbObjectId, const std::string&)> rename;
    std::function<void(AcDbObjectId, LayerSwitch, bool)> change;
    std::function<void(AcDbObjectId, int)> color;
  };
  LayerList(QWidget* parent, Hooks hooks);

  void show(std::vector<LayerEntry> layers);
  /// Sets words and icons to those of now.
  void speakAgain();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void fillRow(int row);
  void act(int row, int column);
  void chooseColor(int row);
  const LayerEntry* selected() const;

  Hooks hooks_;
  std::vector<LayerEntry> layers_;
  QTableWidget* table_;  ///< these belong to the dock
  QToolBar* tools_;
  bool filling_ = false;
};

}  // namespace tarn::host
