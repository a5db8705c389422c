// The properties of what was chosen, in a dock: names and values, changed where they stand.
#pragma once

#include <QDockWidget>
#include <functional>
#include <string>
#include <vector>

#include "host/editor/entityvalues.h"

class QLabel;
class QTableWidget;

namespace tarn::host {

class PropertyList final : public QDockWidget {
 public:
  struct Hooks {
    std::function<void(const std::string& name, const std::string& value)> changed;
    std::function<std::vector<std::string>(ValueKind)> choices;
  };
  PropertyList(QWidget* parent, Hooks hooks);

  /// Of `count` entities.
  void show(size_t count, std::vector<EntityValue> values);
  void speakAgain();

 private:
  void fill();

  Hooks hooks_;
  size_t count_ = 0;
  std::vector<EntityValue> values_;
  QLabel* head_;  ///< these belong to the dock
  QTableWidget* table_;
  bool filling_ = false;
};

}  // namespace tarn::host
