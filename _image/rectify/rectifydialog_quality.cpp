// The box beside the table that says how good the fit is, why it is weak, and what would help.
#include <QBrush>
#include <QColor>
#include <QStringList>
#include <QTableWidgetItem>

#include "_image/rectify/rectifydialog.h"
#include "ui_rectifydialog.h"

namespace {

constexpr int kMostSuggested = 3;
/// Behind the row whose removal would help most; seen on light and on dark ground.
const QColor kWorstRow(220, 90, 30, 110);

QString rounded(double value) {
  return QString::number(value, 'g', 6);
}

QString numbersOf(const std::vector<int>& points, const std::vector<size_t>& places) {
  QStringList numbers;
  for (const int point : points) {
    if (point >= 0 && static_cast<size_t>(point) < places.size()) {
      numbers << QString::number(places[static_cast<size_t>(point)] + 1);
    }
  }
  return numbers.join("、");
}

QString suggestionOf(const kel::PointList& suggested) {
  QStringList places;
  for (const auto& place : suggested) {
    if (place.size() < 2 || places.size() >= kMostSuggested) continue;
    places << QString("(%1, %2)")
                  .arg(QString::number(place[0], 'f', 2), QString::number(place[1], 'f', 2));
  }
  return places.isEmpty() ? QString() : "建议在源坐标 " + places.join("、") + " 附近加点。";
}

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
  m_form->label_rmse->setText(isSolved ? "RMSE：" + rounded(quality.rmse) : "RMSE：–");
  m_form->label_s0->setText(!isSolved                ? QString("s0：–")
                            : quality.redundancy > 0 ? "s0：" + rounded(quality.s0)
                                                     : QString("s0：无多余观测，未检核"));
  QStringList advice;
  if (!quality.advice.isEmpty()) advice << QString::fromUtf8(quality.advice.c_str());
  const QString concerned = numbersOf(quality.faultPoints, places);
  if (!concerned.isEmpty()) advice << "涉及的点：" + concerned + "。";
  const QString suggestion = suggestionOf(quality.suggested);
  if (!suggestion.isEmpty()) advice << suggestion;
  int worst = -1;
  if (quality.worstPoint >= 0 && static_cast<size_t>(quality.worstPoint) < places.size()) {
    worst = static_cast<int>(places[static_cast<size_t>(quality.worstPoint)]);
    advice << QString("去掉第 %1 点后 s0 降为 %2。")
                  .arg(QString::number(worst + 1), rounded(quality.s0WithoutWorst));
  }
  if (quality.targetsSwapped) advice << "目标东、北坐标好像互换了。";
  m_form->swapTargets->setVisible(quality.targetsSwapped);
  markWorstRow(worst);
  note(advice.join(" "));
}

void rectifyDialog::swapTargets() {
  tarn::image::TableRows rows = tableRows();
  if (rows.empty()) return;
  rowsWillChange();
  for (tarn::image::TableRow& row : rows) std::swap(row.point.targetEast, row.point.targetNorth);
  showRows(rows);
  rowsChanged();
}
