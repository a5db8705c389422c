// Moving, scaling, rotating and mirroring: what is typed and picked, checked and made a change.
#include <cmath>

#include "_image/rectify/boxes.h"
#include "_image/rectify/dialogtext.h"
#include "_image/rectify/rectifydialog.h"
#include "ui_rectifydialog.h"

using tarn::image::dialogText;

namespace {

constexpr double kDegree = 3.141592653589793 / 180.0;

double typedNumber(const QLineEdit* edit) {
  return edit->text().trimmed().toDouble();
}

/// True for nothing, which counts as 0, or for a finite number.
bool isNumberOrEmpty(const QLineEdit* edit) {
  return edit->text().trimmed().isEmpty() || tarn::image::coordinateOf(edit->text());
}

}  // namespace

rectifyDialog::PlacementChange rectifyDialog::typedChange() {
  if (m_form->radioButton_moveImgage->isChecked()) return typedMove();
  if (m_form->radioButton_zoom_image->isChecked()) return typedScale();
  if (m_form->radioButton_rotate_image->isChecked()) return typedRotation();
  if (m_form->radioButton_mirror->isChecked()) return typedMirror();
  return {};
}

rectifyDialog::PlacementChange rectifyDialog::typedMove() {
  if (!isNumberOrEmpty(m_form->lineEdit_X_move) || !isNumberOrEmpty(m_form->lineEdit_Y_move)) {
    note(dialogText("平移距离不是数字。", "A distance is not a number."));
    return {};
  }
  double dX = typedNumber(m_form->lineEdit_X_move);
  double dY = typedNumber(m_form->lineEdit_Y_move);
  // A negative zero never reaches the placement.
  if (dX == 0) dX = 0.0;
  if (dY == 0) dY = 0.0;
  return [dX, dY](kel::RectifyPlacement& placement) {
    placement.originX += dX;
    placement.originY += dY;
  };
}

rectifyDialog::PlacementChange rectifyDialog::typedScale() {
  const double factorX = typedNumber(m_form->lineEdit_scaling_X);
  const double factorY = typedNumber(m_form->lineEdit_scaling_Y);
  if (!(factorX > 0) || !(factorY > 0) || !std::isfinite(factorX) || !std::isfinite(factorY)) {
    tarn::image::warningBox(this, "错误", "缩放比例非零且非负");
    return {};
  }
  const AcGePoint3d base = m_zoomPoint.value_or(upperLeftCorner());
  return
      [=](kel::RectifyPlacement& placement) { placement.scale(factorX, factorY, base.x, base.y); };
}

rectifyDialog::PlacementChange rectifyDialog::typedRotation() {
  const double degrees = typedNumber(m_form->lineEdit_rotate_degree);
  // Deliberate: no number is both, so every angle is taken.
  if (degrees < 0.0 && degrees > 360.0) {
    tarn::image::plainBox("请输入正确的旋转角度");
    return {};
  }
  if (!m_rotatePoint) {
    tarn::image::plainBox("请输入正确的旋转基点");
    return {};
  }
  if (!isNumberOrEmpty(m_form->lineEdit_rotate_degree)) {
    note(dialogText("旋转角度不是数字。", "The angle is not a number."));
    return {};
  }
  const AcGePoint3d base = *m_rotatePoint;
  return [=](kel::RectifyPlacement& placement) {
    placement.rotate(degrees * kDegree, base.x, base.y);
  };
}

rectifyDialog::PlacementChange rectifyDialog::typedMirror() {
  if (!m_mirrorLine[0] || !m_mirrorLine[1]) {
    tarn::image::plainBox("请输入正确的镜像线");
    return {};
  }
  const AcGePoint3d from = *m_mirrorLine[0];
  const AcGePoint3d to = *m_mirrorLine[1];
  if (from.x == to.x && from.y == to.y) {
    note(dialogText("镜像线的两点相同，不能确定直线。",
                    "Both points of the mirror line are the same."));
    return {};
  }
  return [=](kel::RectifyPlacement& placement) { placement.mirror(from.x, from.y, to.x, to.y); };
}

/// Where the image's first pixel begins, as the image is drawn now.
AcGePoint3d rectifyDialog::upperLeftCorner() {
  IRectifyDialog& component = m_session->component();
  double x = 0, y = 0;
  if (component.drawingOfPixel(0, 0, x, y)) return {x, y, 0};
  int width = 0, height = 0;
  double scaleX = 0, scaleY = 0;
  component.getImageGeometry(width, height, x, y, scaleX, scaleY);
  return {x, y, 0};
}
