// The box beside the table that says how good the fit is, why it is weak, and what would help.
#include <QBrush>
#include <QColor>
#include <QTableWidgetItem>

#include "_image/rectify/qualitytext.h"
#include "_image/rectify/rectifydialog.h"
#include "ui_rectifydialog.h"

using tarn::image::roundedText;

namespace {

/// Behind the row whose removal would help most; seen on light and on dark ground.
const QColor kWorstRow(220, 90, 30, 110);

}  // namespace

void rectifyDialog::note(const QString& text) {
  m_form->label_advice->setText(text);
}

void rectifyDialog::forgetQuality() {
  m_form->label_rmse->setText("RMSE：–");
  m_form->label_s0->setText("s0：–");
  m_form->swapTargets->hide();
  note({});
  markWorstRow(-1);
}

void rectifyDialog::markWorstRow(int worst) {
  QTableWidget& table = *m_form->pointsTable;
  for (int row = 0; row < table.rowCount(); ++row) {
    for (int column = 0; column < table.columnCount(); ++column) {
      if (QTableWidgetItem* item = table.item(row, column)) {
        item->setBackground(row == worst ? QBrush(kWorstRow) : QBrush());
      }
    }
  }
}

void rectifyDialog::showQuality() {
  const kel::RectifyQuality quality = m_session->component().quality();
  const std::vector<size_t> places = tarn::image::fittedRows(tableRows());
  const bool isSolved = quality.status != 1;
  m_form->label_rmse->setText(isSolved ? "RMSE：" + roundedText(quality.rmse) : "RMSE：–");
  m_form->label_s0->setText(!isSolved                ? QString("s0：–")
                            : quality.redundancy > 0 ? "s0：" + roundedText(quality.s0)
                                                     : QString("s0：无多余观测，未检核"));
  const bool hasWorst =
      quality.worstPoint >= 0 && static_cast<size_t>(quality.worstPoint) < places.size();
  markWorstRow(hasWorst ? static_cast<int>(places[static_cast<size_t>(quality.worstPoint)]) : -1);
  m_form->swapTargets->setVisible(quality.targetsSwapped);
  note(tarn::image::qualityText(quality, places));
}

void rectifyDialog::swapTargets() {
  tarn::image::TableRows rows = tableRows();
  if (rows.empty()) return;
  rowsWillChange();
  for (tarn::image::TableRow& row : rows) std::swap(row.point.targetEast, row.point.targetNorth);
  showRows(rows);
  rowsChanged();
}
