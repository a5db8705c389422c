// Cells of tables that are filled again and again.
#pragma once

#include <QTableWidget>

namespace tarn::host {

/// The cell's item, made when there is none. It stays the same one: a table goes on with it after
/// it has told of its change.
inline QTableWidgetItem* itemAt(QTableWidget& table, int row, int column) {
  if (QTableWidgetItem* there = table.item(row, column)) return there;
  auto* made = new QTableWidgetItem;
  table.setItem(row, column, made);
  return made;
}

}  // namespace tarn::host
