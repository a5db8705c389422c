// Input that arrives while the host computes: Escape asks to stop, keys wait, the rest is dropped.
#pragma once

#include <QKeyEvent>
#include <QObject>
#include <functional>
#include <vector>

namespace tarn::host {

/// An event filter of the whole program while it is installed.
class HeldInput : public QObject {
 public:
  explicit HeldInput(std::function<void()> escape) : escape_(std::move(escape)) {}

  /// Sends the kept keys to `target` through the event loop, in their order.
  void releaseTo(QObject& target);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> escape_;
  std::vector<QKeyEvent> keys_;
};

}  // namespace tarn::host
