// The left button in the drawing: points and windows for a command that waits, else entities chosen
// before a command and their grips.
#pragma once

#include <functional>
#include <string>

#include "host/window/entityoverlay.h"

namespace tarn::host {

class HostApp;
class WindowFrontEnd;

class EntityPicker {
 public:
  /// The host and the front end must outlive it. `run` runs a command line to its end.
  EntityPicker(HostApp& app, WindowFrontEnd& frontEnd, std::function<void(const std::string&)> run)
      : app_(app), frontEnd_(frontEnd), run_(std::move(run)) {}

  void press(GroundPoint at);
  /// `dragged`: the mouse has moved since the press. `removes`: what is hit is taken out of what
  /// was chosen (the shift key).
  void release(GroundPoint at, bool dragged, bool removes);
  void hover(GroundPoint at) { pointer_.cursor = at; }
  void leave() { pointer_.cursor.reset(); }
  /// Lets go of everything chosen; false when there was nothing.
  bool clear();

  /// For painting.
  PointerState pointer() const;

 private:
  void answer(GroundPoint from, GroundPoint to, bool dragged);
  void choose(GroundPoint from, GroundPoint to, bool dragged, bool removes);
  void takeWindow(GroundPoint from, GroundPoint to, bool removes);
  void stretch(GroundPoint grip, GroundPoint to, bool dragged);

  HostApp& app_;
  WindowFrontEnd& frontEnd_;
  std::function<void(const std::string&)> run_;
  PointerState pointer_;
  std::optional<GroundPoint> pressed_;
};

}  // namespace tarn::host
