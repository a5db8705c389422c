// Input that arrives while the host computes: Escape asks to stop, keys wait, the rest is dropped.
#pragma once

#include <QKeyEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

namespace tarn::host {

/// An event filter of the whole program while it is installed.
class HeldInput : public QObject {
 public:
  explicit HeldInput(std::function<void()> escape) : escape_(std::move(escape)) {}

  /// A window that takes input all the same (its button cancels, say); null for none.
  void letThrough(QWidget* window) { open_ = window; }

  /// Sends the kept keys to `target` through the event loop, in their order.
  void releaseTo(QObject& target);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool isOpen(const QObject* watched) const;

  std::function<void()> escape_;
  QPointer<QWidget> open_;
  std::vector<QKeyEvent> keys_;
};

}  // namespace tarn::host
