#include "host/pointcloud/cloudlevels.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/pointcloud/cloudbox.h"

namespace tarn::host {

namespace {

/// A level is used while its cells are not larger than this part of the spacing asked for: one
/// point in each cell then leaves few gaps.
constexpr double kCellPerSpacing = 0.75;
constexpr size_t kSmallestGrid = 4096;
constexpr double kPointsPerSortCell = 8;

std::int64_t cellIndex(double distance, double cell, std::int64_t count) {
  const double index = std::floor(distance / cell);
  return static_cast<std::int64_t>(std::clamp(index, 0.0, static_cast<double>(count - 1)));
}

}  // namespace

CloudLevels::Grid::Grid(const Box& box, double cellSize) : cell(cellSize) {
  columns = static_cast<std::int64_t>((box.maxX - box.minX) / cell) + 1;
  rows = static_cast<std::int64_t>((box.maxY - box.minY) / cell) + 1;
}

std::int64_t CloudLevels::Grid::columnOf(const Box& box, double x) const {
  return cellIndex(x - box.minX, cell, columns);
}

std::int64_t CloudLevels::Grid::rowOf(const Box& box, double y) const {
  return cellIndex(y - box.minY, cell, rows);
}

size_t CloudLevels::Grid::cellOf(const Box& box, const Point& point) const {
  return static_cast<size_t>(rowOf(box, point.y) * columns + columnOf(box, point.x));
}

/// Side of the cells of a grid with about `count` of them, and never more than twice as many.
double CloudLevels::cellFor(double count) const {
  const double width = box_.maxX - box_.minX;
  const double height = box_.maxY - box_.minY;
  count = std::max(count, 1.0);
  const double square = std::sqrt(width * height / count);
  return std::max({square, 2 * std::max(width, height) / count, 1.0});
}

void CloudLevels::keepHighest(Grid& grid, const Point& point) const {
  Point& kept = grid.points[grid.cellOf(box_, point)];
  if (kept.color == 0 || kept.z < point.z) kept = point;
}

void CloudLevels::add(const Point& point) {
  ++added_;
  if (!grids_.empty()) return keepHighest(grids_.front(), point);
  all_.push_back(point);
  if (all_.size() <= kMostPoints) return;
  // Too many to keep: from now on only the highest of each cell.
  grids_.emplace_back(box_, cellFor(static_cast<double>(kMostPoints)));
  Grid& grid = grids_.front();
  grid.isFinest = true;
  grid.points.resize(grid.size());
  for (const Point& one : all_) keepHighest(grid, one);
  all_ = {};
}

void CloudLevels::finish() {
  if (grids_.empty()) {
    finestSpacing_ = cellFor(static_cast<double>(all_.size()));
    sortAll();
  } else {
    finestSpacing_ = grids_.front().cell;
  }
  addCoarserGrids(2 * finestSpacing_);
}

/// Points of one cell stand together, cells row by row.
void CloudLevels::sortAll() {
  order_.emplace_back(box_, cellFor(static_cast<double>(all_.size()) / kPointsPerSortCell));
  const Grid& grid = order_.front();
  starts_.assign(grid.size() + 1, 0);
  for (const Point& point : all_) ++starts_[grid.cellOf(box_, point) + 1];
  for (size_t i = 1; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
  std::vector<std::uint32_t> next(starts_.begin(), starts_.end() - 1);
  std::vector<Point> sorted(all_.size());
  for (const Point& point : all_) sorted[next[grid.cellOf(box_, point)]++] = point;
  all_ = std::move(sorted);
}

void CloudLevels::addCoarserGrids(double cell) {
  for (;; cell *= 2) {
    Grid grid(box_, cell);
    if (grid.size() < kSmallestGrid) return;
    grid.points.resize(grid.size());
    const std::vector<Point>& finer = grids_.empty() ? all_ : grids_.back().points;
    for (const Point& point : finer) {
      if (point.color != 0) keepHighest(grid, point);
    }
    grids_.push_back(std::move(grid));
  }
}

void CloudLevels::visit(const Box& box, double spacing,
                        const AcGiPointCloud::Visitor& visitor) const {
  if (!overlap(box, box_)) return;
  const Grid* best = nullptr;
  for (const Grid& grid : grids_) {
    if (grid.cell <= spacing * kCellPerSpacing) best = &grid;
  }
  if (best == nullptr && !isComplete()) best = &grids_.front();
  if (best == nullptr) return visitAll(box, visitor);
  visitGrid(*best, box, visitor);
}

void CloudLevels::visitAll(const Box& box, const AcGiPointCloud::Visitor& visitor) const {
  if (order_.empty() || all_.empty()) return;
  const Grid& grid = order_.front();
  const std::int64_t left = grid.columnOf(box_, box.minX);
  const std::int64_t right = grid.columnOf(box_, box.maxX);
  const std::int64_t last = grid.rowOf(box_, box.maxY);
  for (std::int64_t row = grid.rowOf(box_, box.minY); row <= last; ++row) {
    const size_t first = starts_[static_cast<size_t>(row * grid.columns + left)];
    const size_t end = starts_[static_cast<size_t>(row * grid.columns + right) + 1];
    if (end > first) visitor(all_.data() + first, end - first, finestSpacing_);
  }
}

void CloudLevels::visitGrid(const Grid& grid, const Box& box,
                            const AcGiPointCloud::Visitor& visitor) const {
  const std::int64_t left = grid.columnOf(box_, box.minX);
  const std::int64_t right = grid.columnOf(box_, box.maxX);
  const std::int64_t last = grid.rowOf(box_, box.maxY);
  for (std::int64_t row = grid.rowOf(box_, box.minY); row <= last; ++row) {
    const Point* first = grid.points.data() + row * grid.columns + left;
    visitor(first, static_cast<size_t>(right - left + 1), grid.cell);
  }
}

}  // namespace tarn::host
