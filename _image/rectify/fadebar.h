// The bar below the dialog's form: how much is seen of the preview, and a switch that leaves
// nothing but the bar before the drawing.
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QSlider;

namespace tarn::image {

/// The opacity is the user's: it is kept in the configuration and is that of the next dialog, which
/// begins with no less than kLeastAtStart, since an image that cannot be seen looks lost.
class FadeBar : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kLeastAtStart = 20;

  explicit FadeBar(QWidget* parent);
  ~FadeBar() override;

  /// Of 0 to 1.
  double opacity() const;
  /// Off while there is no preview.
  void setActive(bool isActive);
  void endComparing();

 Q_SIGNALS:
  void opacityChanged(double opacity);
  void comparing(bool isOn);

 private:
  void showPercent();

  QLabel* m_label;
  QSlider* m_slider;
  QPushButton* m_compare;
  int m_stored;
};

}  // namespace tarn::image
