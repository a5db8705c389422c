// The docks of the window itself: layers, and properties of what was chosen. What is changed in
// them runs as work of the session, a step of its own for undo.
#pragma once

#include <functional>
#include <vector>

#include "base/result.h"

class QAction;
class QMainWindow;

namespace tarn::host {

class HostApp;
class LayerList;
class PropertyList;
class Session;

class Palettes {
 public:
  /// All must outlive the object; the docks belong to the window.
  Palettes(QMainWindow& window, HostApp& app, Session& session);

  /// Brings what is seen of them up to the drawing of now.
  void show();
  void speakAgain();
  /// The switches of both docks.
  std::vector<QAction*> toggles() const;

 private:
  void makeLayers(QMainWindow& window);
  void makeProperties(QMainWindow& window);
  void perform(const std::function<Status()>& change);

  HostApp& app_;
  Session& session_;
  LayerList* layers_;  ///< belong to the window
  PropertyList* properties_;
};

}  // namespace tarn::host
