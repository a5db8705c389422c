// The table of control points: rows, their edits, undo, check points, recovery after a crash.
#include <QTableWidget>
#include <QTableWidgetItem>

#include <utility>

#include "_image/rectify/boxes.h"
#include "_image/rectify/dialogtext.h"
#include "_image/rectify/pointrecovery.h"
#include "_image/rectify/rectifydialog.h"
#include "ui_rectifydialog.h"

using tarn::image::ControlPoint;
using tarn::image::TableRow;
using tarn::image::TableRows;

namespace {

enum Column { kNumber, kSourceEast, kSourceNorth, kTargetEast, kTargetNorth, kResidual, kColumns };

/// Of the number's cell: the row only checks the fit.
constexpr int kCheckRole = Qt::UserRole;

AcGePoint2dArray nodesOf(const ControlPoint& point) {
  AcGePoint2dArray nodes;
  nodes.append(AcGePoint2d(point.sourceEast, point.sourceNorth));
  nodes.append(AcGePoint2d(point.targetEast, point.targetNorth));
  return nodes;
}

QTableWidgetItem* cell(const QString& text) {
  auto* item = new QTableWidgetItem(text);
  item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
  item->setToolTip(text);
  return item;
}

}  // namespace

TableRows rectifyDialog::tableRows() const {
  TableRows rows;
  const QTableWidget& table = *m_form->pointsTable;
  for (int row = 0; row < table.rowCount(); ++row) {
    QStringList fields;
    for (int column = kSourceEast; column <= kTargetNorth; ++column) {
      fields << table.item(row, column)->text();
    }
    const bool isCheck = table.item(row, kNumber)->data(kCheckRole).toBool();
    rows.push_back({tarn::image::pointOf(fields).value_or(ControlPoint{}), isCheck});
  }
  return rows;
}

std::optional<ControlPoint> rectifyDialog::editedPoint() const {
  return tarn::image::pointOf({m_form->oldEast->text(), m_form->oldNorth->text(),
                               m_form->newEast->text(), m_form->newNorth->text()});
}

int rectifyDialog::selectedRow() const {
  const QList<QTableWidgetItem*> selected = m_form->pointsTable->selectedItems();
  return selected.isEmpty() ? -1 : selected.first()->row();
}

void rectifyDialog::appendRow(const ControlPoint& point, bool isCheck) {
  DrawPointPair(nodesOf(point));
  QTableWidget& table = *m_form->pointsTable;
  const int row = table.rowCount();
  table.insertRow(row);
  table.setItem(row, kNumber, cell(QString::number(row + 1)));
  table.setItem(row, kSourceEast, cell(tarn::image::coordinateText(point.sourceEast)));
  table.setItem(row, kSourceNorth, cell(tarn::image::coordinateText(point.sourceNorth)));
  table.setItem(row, kTargetEast, cell(tarn::image::coordinateText(point.targetEast)));
  table.setItem(row, kTargetNorth, cell(tarn::image::coordinateText(point.targetNorth)));
  table.setItem(row, kResidual, cell({}));
  markCheckRow(row, isCheck);
  table.resizeColumnsToContents();
}

/// Replaces the rows and their markers, without a step of undo.
void rectifyDialog::showRows(const TableRows& rows) {
  ClearPointPair();
  m_form->pointsTable->setRowCount(0);
  for (const TableRow& row : rows) appendRow(row.point, row.isCheck);
}

/// The rows after the image was placed anew: other sources, the residuals stay. What was undone or
/// could be undone meant the image as it was before.
void rectifyDialog::showPlacedRows(const TableRows& rows) {
  QTableWidget& table = *m_form->pointsTable;
  ClearPointPair();
  for (size_t i = 0; i < rows.size(); ++i) {
    const int row = static_cast<int>(i);
    const QString east = tarn::image::coordinateText(rows[i].point.sourceEast);
    const QString north = tarn::image::coordinateText(rows[i].point.sourceNorth);
    table.item(row, kSourceEast)->setText(east);
    table.item(row, kSourceEast)->setToolTip(east);
    table.item(row, kSourceNorth)->setText(north);
    table.item(row, kSourceNorth)->setToolTip(north);
    DrawPointPair(nodesOf(rows[i].point));
  }
  m_history.clear();
  m_form->undoTable->setEnabled(false);
  m_form->redoTable->setEnabled(false);
  tarn::image::keepForRecovery(m_session->path(), rows);
}

void rectifyDialog::markCheckRow(int row, bool isCheck) {
  QTableWidget& table = *m_form->pointsTable;
  table.item(row, kNumber)->setData(kCheckRole, isCheck);
  for (int column = 0; column < kColumns; ++column) {
    QFont font = table.font();
    font.setItalic(isCheck);
    table.item(row, column)->setFont(font);
  }
  table.item(row, kNumber)
      ->setToolTip(isCheck
                       ? tarn::image::dialogText("检核点，不参与计算", "Check point, not fitted")
                       : QString());
}

void rectifyDialog::rowsWillChange() {
  m_history.keep(tableRows());
}

void rectifyDialog::rowsChanged() {
  m_form->undoTable->setEnabled(m_history.canUndo());
  m_form->redoTable->setEnabled(m_history.canRedo());
  m_form->recoverPoints->hide();
  forgetQuality();
  if (m_session) tarn::image::keepForRecovery(m_session->path(), tableRows());
}

void rectifyDialog::on_addPoints_clicked() {
  const std::optional<ControlPoint> point = editedPoint();
  if (!point) return;
  if (tarn::image::holdsPair(tableRows(), *point)) {
    tarn::image::informationBox(this, windowTitle(), "该点对已经存在，请勿重复添加！");
    return;
  }
  rowsWillChange();
  appendRow(*point, false);
  for (QLineEdit* edit : {m_form->oldEast, m_form->oldNorth, m_form->newEast, m_form->newNorth}) {
    edit->clear();
  }
  rowsChanged();
}

// Deliberate: the markers stay where they are.
void rectifyDialog::on_updatePoints_clicked() {
  const std::optional<ControlPoint> point = editedPoint();
  const int row = selectedRow();
  if (!point || row < 0) return;
  rowsWillChange();
  QTableWidget& table = *m_form->pointsTable;
  const double values[] = {point->sourceEast, point->sourceNorth, point->targetEast,
                           point->targetNorth};
  for (int column = kSourceEast; column <= kTargetNorth; ++column) {
    const QString text = tarn::image::coordinateText(values[column - kSourceEast]);
    table.item(row, column)->setText(text);
    table.item(row, column)->setToolTip(text);
  }
  rowsChanged();
}

void rectifyDialog::on_deletePoints_clicked() {
  const int row = selectedRow();
  if (row < 0) return;
  rowsWillChange();
  m_markers.remove(static_cast<size_t>(row));
  QTableWidget& table = *m_form->pointsTable;
  table.removeRow(row);
  for (int i = row; i < table.rowCount(); ++i) {
    table.item(i, kNumber)->setText(QString::number(i + 1));
  }
  rowsChanged();
}

void rectifyDialog::on_table_item_double_clicked(QTableWidgetItem* /*item*/) {
  const int row = selectedRow();
  if (row < 0) return;
  const QTableWidget& table = *m_form->pointsTable;
  m_form->oldEast->setText(table.item(row, kSourceEast)->text());
  m_form->oldNorth->setText(table.item(row, kSourceNorth)->text());
  m_form->newEast->setText(table.item(row, kTargetEast)->text());
  m_form->newNorth->setText(table.item(row, kTargetNorth)->text());
}

void rectifyDialog::stepRows(bool back) {
  const auto rows = back ? m_history.undo(tableRows()) : m_history.redo(tableRows());
  if (!rows) return;
  showRows(*rows);
  rowsChanged();
}

void rectifyDialog::toggleCheckPoint() {
  const int row = selectedRow();
  if (row < 0) return;
  rowsWillChange();
  const bool isCheck = m_form->pointsTable->item(row, kNumber)->data(kCheckRole).toBool();
  markCheckRow(row, !isCheck);
  rowsChanged();
}

void rectifyDialog::offerRecovery() {
  const TableRows rows = m_session ? tarn::image::recoverableRows(m_session->path()) : TableRows();
  m_form->recoverPoints->setVisible(!rows.empty() && rows != tableRows());
}

void rectifyDialog::recoverRows() {
  const TableRows rows = tarn::image::recoverableRows(m_session->path());
  if (rows.empty()) return;
  rowsWillChange();
  showRows(rows);
  rowsChanged();
}

void rectifyDialog::DrawPointPair(AcGePoint2dArray nodes) {
  m_markers.add(std::move(nodes));
}

void rectifyDialog::ClearPointPair() {
  m_markers.clear();
}
