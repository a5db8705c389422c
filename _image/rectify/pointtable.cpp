#include "_image/rectify/pointtable.h"

#include <algorithm>
#include <utility>

namespace tarn::image {
namespace {

std::optional<TableRows> step(std::vector<TableRows>& from, std::vector<TableRows>& to,
                              TableRows now) {
  if (from.empty()) return std::nullopt;
  to.push_back(std::move(now));
  TableRows rows = std::move(from.back());
  from.pop_back();
  return rows;
}

}  // namespace

bool operator==(const TableRow& a, const TableRow& b) {
  return a.point == b.point && a.isCheck == b.isCheck;
}

bool holdsPair(const TableRows& rows, const ControlPoint& point) {
  return std::any_of(rows.begin(), rows.end(),
                     [&](const TableRow& row) { return isSamePair(row.point, point); });
}

std::vector<size_t> fittedRows(const TableRows& rows) {
  std::vector<size_t> places;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (!rows[i].isCheck) places.push_back(i);
  }
  return places;
}

void TableHistory::keep(TableRows before) {
  earlier_.push_back(std::move(before));
  undone_.clear();
}

std::optional<TableRows> TableHistory::undo(TableRows now) {
  return step(earlier_, undone_, std::move(now));
}

std::optional<TableRows> TableHistory::redo(TableRows now) {
  return step(undone_, earlier_, std::move(now));
}

void TableHistory::clear() {
  earlier_.clear();
  undone_.clear();
}

}  // namespace tarn::image
