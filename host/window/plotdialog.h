// The settings of a plot in a dialog.
#pragma once

#include <QDialog>
#include <functional>

#include "host/editor/frontend.h"
#include "host/editor/plotjob.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace tarn::host {

class HostApp;
class PlotPreview;

class PlotDialog : public QDialog {
 public:
  /// `job` is what is shown first; choose() changes it. Both must outlive the dialog.
  PlotDialog(QWidget* parent, HostApp& app, PlotJob& job);

  /// Runs the dialog. The job is changed unless the answer is kCancel.
  PlotChoice choose();

 private:
  QWidget* paperGroup();
  QWidget* areaGroup();
  QWidget* scaleGroup();
  QWidget* outputGroup();
  void fillViews();
  void connectAll();
  void showJob();
  /// What the fields say; what they cannot say is left as it was. The sentence names the first
  /// field that is wrong.
  std::string readFields();
  void readPaper();
  bool isCustomPaper() const;
  void changed();
  /// What comes on the paper, or the first fault; with `redraw` also in the preview.
  void tell(std::string fault, bool redraw);
  void chooseLayout();
  void chooseDevice();
  void browse();
  void pick();
  void plot();
  QString summary(const PlotPlan& plan) const;

  HostApp& app_;
  PlotJob& job_;
  PlotJob edited_;
  PlotChoice choice_ = PlotChoice::kCancel;
  bool showing_ = false;      ///< the fields are being filled
  std::string agreedTarget_;  ///< the file that may be replaced

  QComboBox* layout_;
  QComboBox* paper_;
  QDoubleSpinBox* width_;
  QDoubleSpinBox* height_;
  QComboBox* orientation_;
  QComboBox* rotation_;
  QComboBox* area_;
  QComboBox* view_;
  QLabel* viewLabel_;
  QPushButton* pick_;
  QCheckBox* fit_;
  QComboBox* scale_;
  QComboBox* units_;
  QCheckBox* centered_;
  QDoubleSpinBox* offsetX_;
  QDoubleSpinBox* offsetY_;
  QComboBox* device_;
  QSpinBox* dpi_;
  QLineEdit* file_;
  QCheckBox* keeps_;
  PlotPreview* preview_;
  QLabel* message_;
  QPushButton* plot_;
};

}  // namespace tarn::host
