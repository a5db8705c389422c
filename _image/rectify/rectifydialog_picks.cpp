// Picking in the drawing, and what the dialog asks of the view and of the image.
#include <QLineEdit>
#include <QPointF>
#include <QPointer>

#include "_image/cadimage.h"
#include "_image/rectify/boxes.h"
#include "_image/rectify/rectifydialog.h"
#include "acedads.h"
#include "commoncode/cadutil/message.h"
#include "ui_rectifydialog.h"

using tarn::image::pickedText;

namespace {

/// Hides the dialog while the user works in the drawing and shows it again in its place, unless it
/// is gone by then.
class HiddenDialog {
 public:
  explicit HiddenDialog(QDialog* dialog) : dialog_(dialog), place_(dialog->pos()) {
    dialog->hide();
  }
  ~HiddenDialog() {
    if (!dialog_) return;
    dialog_->move(place_);
    dialog_->show();
    dialog_->raise();
    dialog_->activateWindow();
  }
  HiddenDialog(const HiddenDialog&) = delete;
  HiddenDialog& operator=(const HiddenDialog&) = delete;

  /// Asks for a point; nothing when it is cancelled or the dialog went meanwhile.
  std::optional<AcGePoint3d> pick(const ACHAR* prompt) const {
    ads_point picked = {0, 0, 0};
    if (acedGetPoint(nullptr, prompt, picked) != RTNORM || !dialog_) return std::nullopt;
    return AcGePoint3d(picked[0], picked[1], 0.0);
  }
  bool isGone() const { return !dialog_; }

 private:
  QPointer<QDialog> dialog_;
  QPoint place_;
};

}  // namespace

void rectifyDialog::on_pickOld_clicked() {
  if (m_session) {
    // The point is taken on the image as it is placed, not on a preview.
    takePreviewBack();
    m_session->component().imageQueryA();
    m_session->component().imageQueryB();
    m_session->component().imageQueryC();
  }
  pickInto(m_form->oldEast, m_form->oldNorth);
}

void rectifyDialog::on_pickNew_clicked() {
  pickInto(m_form->newEast, m_form->newNorth);
}

void rectifyDialog::pickInto(QLineEdit* east, QLineEdit* north) {
  const HiddenDialog hidden(this);
  const auto point = hidden.pick(L"拾取点\n");
  if (!point) return;
  east->setText(pickedText(point->x));
  north->setText(pickedText(point->y));
}

void rectifyDialog::on_pushButton_choose_MovePoint() {
  const HiddenDialog hidden(this);
  tarn::image::plainBox("请选择平移基点");
  const auto base = hidden.pick(L"\n拾取点:");
  if (hidden.isGone()) return;
  tarn::image::plainBox("请选择平移到的点");
  const auto target = hidden.pick(L"\n拾取点:");
  tarn::cad::printMessage(L"\n");
  if (!base || !target || hidden.isGone()) return;
  m_form->lineEdit_X_move->setText(pickedText(target->x - base->x));
  m_form->lineEdit_Y_move->setText(pickedText(target->y - base->y));
}

void rectifyDialog::on_pushButton_PickZoomPoint_clicked() {
  const HiddenDialog hidden(this);
  const auto point = hidden.pick(L"\n拾取点:");
  tarn::cad::printMessage(L"\n");
  if (point) m_zoomPoint = point;
}

void rectifyDialog::on_pushButton_choose_rotate_point() {
  const HiddenDialog hidden(this);
  if (const auto point = hidden.pick(L"\n拾取点:")) m_rotatePoint = point;
}

void rectifyDialog::on_pushButton_choose_mirror_point() {
  const HiddenDialog hidden(this);
  const auto from = hidden.pick(L"\n拾取起始点:");
  if (!from) return;
  const auto to = hidden.pick(L"\n拾取终止点:");
  if (!to) return;
  m_mirrorLine[0] = from;
  m_mirrorLine[1] = to;
}

void rectifyDialog::Regen_Image() {
  if (m_session) m_session->regenerate();
}

bool rectifyDialog::GetImageData(const kel::Object<IImageDivision>& objIO, int& imagePixelsX,
                                 int& imagePixelsY, double& imageScaleX, double& imageScaleY,
                                 double& imageTop, double& imageLeft, double& imageRight,
                                 double& imageBottom) {
  return CCadImage().GetImageData(objIO, nullptr, imagePixelsX, imagePixelsY, imageScaleX,
                                  imageScaleY, imageTop, imageLeft, imageRight, imageBottom);
}

void rectifyDialog::GetScreenRect(double& top, double& bottom, double& left, double& right) {
  resbuf screen{};
  resbuf center{};
  resbuf size{};
  if (acedGetVar(L"SCREENSIZE", &screen) != RTNORM || acedGetVar(L"VIEWCTR", &center) != RTNORM ||
      acedGetVar(L"VIEWSIZE", &size) != RTNORM) {
    return;
  }
  const double ratio = screen.resval.rpoint[0] / screen.resval.rpoint[1];
  const double height = size.resval.rreal;
  const double width = height * ratio;
  left = center.resval.rpoint[0] - width / 2;
  bottom = center.resval.rpoint[1] - height / 2;
  right = center.resval.rpoint[0] + width / 2;
  top = center.resval.rpoint[1] + height / 2;
}

bool rectifyDialog::GetImageInfo(int& nImageH, int& nImageW, double& dSclx, double& dScly,
                                 QPointF& imagePos) {
  if (!m_session) return false;
  double left = 0, top = 0;
  m_session->component().getImageGeometry(nImageW, nImageH, left, top, dSclx, dScly);
  imagePos = QPointF(left, top);
  return true;
}

bool rectifyDialog::SetImageInfo(int /*nImageH*/, int /*nImageW*/, double /*dSclx*/,
                                 double /*dScly*/, const QPointF& /*imagePos*/) {
  return false;
}
