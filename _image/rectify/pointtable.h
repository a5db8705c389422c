// The rows of the dialog's table as values, and their undo, apart from the widget that holds them.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "_image/rectify/controlpoints.h"

namespace tarn::image {

/// One row: a pair, and whether it only checks the fit.
struct TableRow {
  ControlPoint point;
  bool isCheck = false;
};
bool operator==(const TableRow& a, const TableRow& b);
using TableRows = std::vector<TableRow>;

/// True when a row holds the same pair.
bool holdsPair(const TableRows& rows, const ControlPoint& point);

/// The places of the rows that the fit takes.
std::vector<size_t> fittedRows(const TableRows& rows);

/// What the table held before each change. The table itself stays the only store of the rows.
class TableHistory {
 public:
  bool canUndo() const { return !earlier_.empty(); }
  bool canRedo() const { return !undone_.empty(); }
  /// The table is about to be changed from `before`; what was undone is forgotten.
  void keep(TableRows before);
  /// The rows to show in place of `now`; nothing when there are none.
  std::optional<TableRows> undo(TableRows now);
  std::optional<TableRows> redo(TableRows now);
  void clear();

 private:
  std::vector<TableRows> earlier_;
  std::vector<TableRows> undone_;
};

}  // namespace tarn::image
