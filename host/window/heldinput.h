// Input that arrives while nothing takes it. While the host computes, Escape asks to stop, keys
// wait and the rest is dropped; between an answer and the next question everything waits.
#pragma once

#include <QKeyEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tarn::host {

/// An event filter of the whole program while it is installed.
class HeldInput : public QObject {
 public:
  explicit HeldInput(std::function<void()> escape) : escape_(std::move(escape)) {}

  /// A window that takes input all the same (its button cancels, say); null for none.
  void letThrough(QWidget* window) { open_ = window; }

  /// From now on (until false) mouse and Escape wait as well: a question has its answer, and what
  /// comes in the same turn of the event loop belongs to the next one.
  /// Returns what it was.
  bool keepAll(bool all) { return std::exchange(keepsAll_, all); }

  /// Sends what was kept through the event loop, in its order: keys to `target`, the mouse to its
  /// window.
  void releaseTo(QObject& target);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool isOpen(const QObject* watched) const;

  std::function<void()> escape_;
  QPointer<QWidget> open_;
  struct Kept {
    QPointer<QObject> receiver;  ///< null for keys
    std::unique_ptr<QEvent> event;
  };
  void keep(QObject* watched, const QEvent& event);

  bool keepsAll_ = false;
  std::vector<Kept> kept_;
};

}  // namespace tarn::host
