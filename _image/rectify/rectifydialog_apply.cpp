// What "计算误差" and "确定" compute and check, and how the result is kept.
#include <algorithm>
#include <cmath>

#include "_image/rectify/boxes.h"
#include "_image/rectify/rectifydialog.h"
#include "commoncode/cadutil/message.h"
#include "ui_rectifydialog.h"

using tarn::image::ControlPoint;
using tarn::image::TableRows;

namespace {

constexpr int kResidualColumn = 5;
constexpr double kResidualLimit = 10.0;

std::vector<ControlPoint> fittedPoints(const TableRows& rows) {
  std::vector<ControlPoint> points;
  for (const size_t row : tarn::image::fittedRows(rows)) points.push_back(rows[row].point);
  return points;
}

/// Where the pairs' sources are once the image has changed.
struct MovedSources {
  std::vector<ControlPoint> before;
  std::vector<ControlPoint> after;

  /// The place of a source that the component knows; false when it does not.
  bool find(ControlPoint& point) const {
    for (size_t i = 0; i < before.size() && i < after.size(); ++i) {
      if (before[i].sourceEast != point.sourceEast || before[i].sourceNorth != point.sourceNorth) {
        continue;
      }
      point.sourceEast = after[i].sourceEast;
      point.sourceNorth = after[i].sourceNorth;
      return true;
    }
    return false;
  }
};

}  // namespace

bool rectifyDialog::computeResiduals(bool setsMethod) {
  const TableRows rows = tableRows();
  const std::vector<size_t> places = tarn::image::fittedRows(rows);
  IRectifyDialog& component = m_session->component();
  const int method = m_form->rectifyMethod->currentIndex();
  if (static_cast<int>(places.size()) < component.minimumPointCount(method)) return false;
  if (setsMethod) component.setRectifyMethod(method);
  m_session->setPoints(fittedPoints(rows));
  const kel::PointList residuals = component.getResiduals();
  m_residuals.assign(places.size(), 0.0);
  for (size_t i = 0; i < places.size() && i < residuals.size(); ++i) {
    if (residuals[i].size() > 2) m_residuals[i] = residuals[i][2];
    showResidual(static_cast<int>(places[i]), m_residuals[i]);
  }
  for (size_t row = 0; row < rows.size(); ++row) {
    const ControlPoint& p = rows[row].point;
    double x = 0, y = 0;
    if (!rows[row].isCheck || !component.transformPoint(p.sourceEast, p.sourceNorth, x, y))
      continue;
    showResidual(static_cast<int>(row), std::hypot(x - p.targetEast, y - p.targetNorth));
  }
  return true;
}

void rectifyDialog::showResidual(int row, double residual) {
  QTableWidgetItem* item = m_form->pointsTable->item(row, kResidualColumn);
  item->setText(QString("%1").arg(residual));
  item->setToolTip(tarn::image::coordinateText(residual));
}

void rectifyDialog::on_calError_clicked() {
  if (!m_session) return;
  if (!computeResiduals(false)) {
    tarn::image::warningBox(this, "错误", "没有足够的控制点。");
    return;
  }
  m_session->preview();
  previewChanged();
  Regen_Image();
  showQuality();
}

void rectifyDialog::on_calRectify_clicked() {
  if (!m_session) return;
  if (m_form->_is_rectify->isChecked()) {
    rectifyByPoints();
  } else {
    applyMode();
  }
  previewChanged();
  Regen_Image();
}

/// False after a warning.
bool rectifyDialog::statusAllows() {
  m_status = m_session->component().rectifyStatus();
  if (m_status == 1) {
    tarn::image::warningBox(this, "纠正错误", "当前所选点不能正确计算纠正转换参数，请重新选点！");
  } else if (m_status == 2) {
    tarn::image::warningBox(this, "纠正警告", "当前所选点不能准确计算纠正转换参数，请重新选点！");
  }
  return m_status != 1 && m_status != 2;
}

void rectifyDialog::warnOfResiduals() {
  int width = 0, height = 0;
  double left = 0, top = 0, scaleX = 0, scaleY = 0;
  m_session->component().getImageGeometry(width, height, left, top, scaleX, scaleY);
  const double scale =
      std::fabs(scaleX) < std::fabs(scaleY) ? std::fabs(scaleX) : std::fabs(scaleY);
  for (const double residual : m_residuals) {
    if (!(residual / scale > kResidualLimit)) continue;
    tarn::image::warningBox(this, "纠正警告", "纠正误差过大！");
    return;
  }
}

void rectifyDialog::rectifyByPoints() {
  if (!computeResiduals(true)) {
    tarn::image::warningBox(this, "错误", "没有足够的控制点。");
    return;
  }
  IRectifyDialog& component = m_session->component();
  component.computeTransform();
  showQuality();
  if (!statusAllows()) {
    if (!m_session->isPreviewed()) component.setRectifyMethod(-1);
    return;
  }
  warnOfResiduals();
  MovedSources moved;
  const TableRows rows = tableRows();
  for (const tarn::image::TableRow& row : rows) {
    ControlPoint after = row.point;
    component.transformPoint(row.point.sourceEast, row.point.sourceNorth, after.sourceEast,
                             after.sourceNorth);
    moved.before.push_back(row.point);
    moved.after.push_back(after);
  }
  const tarn::image::PointRecord record{component.rectifyMethod(), m_session->handedPoints()};
  component.acceptTransform();
  if (!m_session->keepAccepted()) return;
  const std::string fault = m_session->writePointFile(record);
  if (!fault.empty()) {
    tarn::cad::printMessage(L"\n%1", QString::fromStdString(fault).toStdWString());
    note(QString::fromStdString(fault));
  }
  // As the component has them, so that it knows them again.
  const std::vector<ControlPoint> handed = m_session->handedPoints();
  const std::vector<size_t> places = tarn::image::fittedRows(rows);
  for (size_t i = 0; i < places.size() && handed.size() == places.size(); ++i) {
    moved.after[places[i]] = handed[i];
  }
  TableRows placed = rows;
  for (size_t row = 0; row < placed.size(); ++row) {
    placed[row].point.sourceEast = moved.after[row].sourceEast;
    placed[row].point.sourceNorth = moved.after[row].sourceNorth;
  }
  showPlacedRows(placed);
}

void rectifyDialog::applyMode() {
  IRectifyDialog& component = m_session->component();
  takePreviewBack();
  component.imageQueryA();
  component.imageQueryB();
  kel::RectifyPlacement* placement = component.imageQueryC();
  const PlacementChange change = typedChange();
  if (!change || !placement) return;
  const std::vector<ControlPoint> before = m_session->handedPoints();
  change(*placement);
  component.applyPlacement();
  if (!m_session->keepAccepted()) return;
  const MovedSources moved{before, m_session->handedPoints()};
  kel::RectifyPlacement step;
  change(step);
  TableRows rows = tableRows();
  for (tarn::image::TableRow& row : rows) {
    if (moved.find(row.point)) continue;
    double x = 0, y = 0;
    step.applyTo(row.point.sourceEast, row.point.sourceNorth, x, y);
    row.point.sourceEast = x;
    row.point.sourceNorth = y;
  }
  showPlacedRows(rows);
}
