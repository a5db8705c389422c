// Arrow keys among the mode buttons, in the order of the form: by themselves they would go to the
// nearest button on the screen, past most of the modes.
#pragma once

#include <QObject>

#include <vector>

class QAbstractButton;

namespace tarn::image {

class ModeKeys : public QObject {
  Q_OBJECT

 public:
  /// Lives as long as its parent.
  ModeKeys(const std::vector<QAbstractButton*>& buttons, QObject* parent);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::vector<QAbstractButton*> m_buttons;
};

}  // namespace tarn::image
