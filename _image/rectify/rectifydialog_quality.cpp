// The box beside the table that says how good the fit is, why it is weak, and what would help.
#include <QBrush>
#include <QColor>
#include <QTableWidgetItem>

#include "_image/rectify/dialogtext.h"
#include "_image/rectify/rectifydialog.h"
#include "ui_rectifydialog.h"

using tarn::fitreport::roundedText;
using tarn::image::dialogText;

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
  m_repair = {};
  m_form->repairPoints->hide();
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
  m_form->label_rmse->setText(isSolved ? "RMSE：" + roundedText(quality.rmse) : QString("RMSE：–"));
  m_form->label_s0->setText(!isSolved ? QString("s0：–")
                            : quality.redundancy > 0
                                ? "s0：" + roundedText(quality.s0)
                                : dialogText("s0：无多余观测，未检核", "s0：nothing is checked"));
  const bool hasWorst =
      quality.worstPoint >= 0 && static_cast<size_t>(quality.worstPoint) < places.size();
  markWorstRow(hasWorst ? static_cast<int>(places[static_cast<size_t>(quality.worstPoint)]) : -1);
  m_repair = quality.repair;
  m_form->repairPoints->setVisible(!m_repair.changes.empty());
  note(tarn::fitreport::fitText(quality, places, tarn::image::textLanguage()));
}
