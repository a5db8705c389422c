// The dialog that puts an image into its right place: by control points, or moved, scaled, rotated,
// mirrored. It collects and checks input; the component computes, the session changes the drawing.
#pragma once

#include <QDialog>
#include <QRect>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "_image/rectify/drawingwatch.h"
#include "_image/rectify/pairmarkers.h"
#include "_image/rectify/pointtable.h"
#include "_image/rectify/rectifysession.h"
#include "gepnt3d.h"
#include "inc/iimagedivision.h"

class QLayout;
class QLineEdit;
class QPointF;
class QTableWidgetItem;

namespace Ui {
class rectifyDialog;
}
namespace tarn::fitreport {
struct FitReport;
struct ReportRow;
}  // namespace tarn::fitreport

/// At most one at a time, a window without a parent, deleted when it is closed.
class rectifyDialog : public QDialog {
  Q_OBJECT

 public:
  /// The only one there is; null when none is open.
  static rectifyDialog* instance();
  /// The only one, made for the first request.
  static rectifyDialog* request();
  ~rectifyDialog() override;

  /// Gives the dialog its image. What was previewed of another one is taken back.
  void setImage(std::unique_ptr<tarn::image::RectifySession> session);
  /// Modal, before the window of the host, without waiting for its end.
  void showModal(bool isModal);

 public Q_SLOTS:
  void on_addPoints_clicked();
  void on_updatePoints_clicked();
  void on_deletePoints_clicked();
  void on_calError_clicked();
  void on_calRectify_clicked();

 public:
  void ClearPointPair();
  /// Source, then target; their number is the next one.
  void DrawPointPair(AcGePoint2dArray nodes);
  void Regen_Image();
  bool GetImageData(const kel::Object<IImageDivision>& objIO, int& imagePixelsX, int& imagePixelsY,
                    double& imageScaleX, double& imageScaleY, double& imageTop, double& imageLeft,
                    double& imageRight, double& imageBottom);
  /// The current view in drawing units, taken as not twisted.
  void GetScreenRect(double& top, double& bottom, double& left, double& right);
  bool GetImageInfo(int& nImageH, int& nImageW, double& dSclx, double& dScly, QPointF& imagePos);
  // Deliberate: false, and nothing changes.
  bool SetImageInfo(int nImageH, int nImageW, double dSclx, double dScly, const QPointF& imagePos);

 public Q_SLOTS:
  void on_abort_clicked();
  void on_pickOld_clicked();
  void on_pickNew_clicked();

 public:
  // Deliberate: nothing; the method is read at each computation.
  void methodChangeSlot();
  void on_input_ponits_clicked();
  void on_out_rectify_image_clicked();
  void on_table_item_double_clicked(QTableWidgetItem* item);
  void on_pushButton_choose_MovePoint();
  void on_pushButton_PickZoomPoint_clicked();
  void on_pushButton_choose_rotate_point();
  bool layoutContainsWidget(QLayout* layout, QWidget* widget, QLayout*& parentLayout);
  QLayout* findInnermostLayout(QLayout* layout, QWidget* widget);
  void setAllWidgetsEnabled(QWidget* widget, bool enabled);
  void setLayoutAllWidgetsEnabled(QLayout* layout, bool enabled);
  void on_pushButton_choose_mirror_point();
  void handleRadioButtonToggle(bool checked);

 public Q_SLOTS:
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  rectifyDialog();
  void connectWidgets();
  void selectFirstMode();

  // Rows (rectifydialog_rows.cpp).
  tarn::image::TableRows tableRows() const;
  std::optional<tarn::image::ControlPoint> editedPoint() const;
  int selectedRow() const;
  void appendRow(const tarn::image::ControlPoint& point, bool isCheck);
  void showRows(const tarn::image::TableRows& rows);
  void showPlacedRows(const tarn::image::TableRows& rows);
  void markCheckRow(int row, bool isCheck);
  void rowsWillChange();
  void rowsChanged();
  void stepRows(bool back);
  void toggleCheckPoint();
  void offerRecovery();
  void recoverRows();

  // Computing (rectifydialog_apply.cpp, rectifydialog_modes.cpp).
  bool computeResiduals(bool setsMethod);
  void showResidual(int row, double residual);
  void rectifyByPoints();
  bool statusAllows();
  void warnOfResiduals();
  void applyMode();
  /// Changes a placement as the checked mode says; empty after a message.
  using PlacementChange = std::function<void(kel::RectifyPlacement&)>;
  PlacementChange typedChange();
  PlacementChange typedMove();
  PlacementChange typedScale();
  PlacementChange typedRotation();
  PlacementChange typedMirror();
  AcGePoint3d upperLeftCorner();

  // What is said of the fit (rectifydialog_quality.cpp).
  void showQuality();
  void forgetQuality();
  void markWorstRow(int worst);
  void note(const QString& text);

  // Seeing a preview (rectifydialog_preview.cpp).
  void setComparing(bool isOn);
  void previewChanged();
  void takePreviewBack();

  // Results (rectifydialog_results.cpp).
  void nameOwnWidgets();
  std::optional<tarn::fitreport::FitReport> fittedReport();
  void writeReport();
  std::optional<double> arrowFactor(const std::vector<tarn::fitreport::ReportRow>& rows);
  void drawResidualArrows();
  void eraseResidualArrows();
  void arrowsChanged();
  void repairPoints();

  void pickInto(QLineEdit* east, QLineEdit* north);
  void exportTo(const std::wstring& path, const std::string& format);

  std::unique_ptr<Ui::rectifyDialog> m_form;
  std::unique_ptr<tarn::image::RectifySession> m_session;
  std::unique_ptr<tarn::image::DrawingWatch> m_watch;
  /// What comparing has hidden, and where the dialog stood before.
  std::vector<QWidget*> m_folded;
  QRect m_unfolded;
  tarn::image::PairMarkers m_markers;
  tarn::image::TableHistory m_history;
  kel::RectifyRepair m_repair;  ///< what repairPoints() would do
  /// Length of the residual of each fitted row after the last computation, in ground units.
  std::vector<double> m_residuals;
  int m_status = 0;

  // Picked points; nothing until they have been picked.
  std::optional<AcGePoint3d> m_zoomPoint;
  std::optional<AcGePoint3d> m_rotatePoint;
  std::optional<AcGePoint3d> m_mirrorLine[2];
};
