// Points of one area in memory, thinned in levels like an image pyramid: few points are kept as
// they are, of many the highest in each cell of a grid. What they take is bounded.
#pragma once

#include <cstdint>
#include <vector>

#include "acgipointcloud.h"
#include "adesk.h"

namespace tarn::host {

class ACADHOST_EXPORT CloudLevels {
 public:
  using Point = AcGiPointCloud::Point;
  using Box = AcGiPointCloud::Box;

  /// Up to this many points are all kept; a grid has at most twice as many cells.
  static constexpr size_t kMostPoints = size_t{1} << 21;

  /// `box` is where the points are; those outside are put into the nearest cell of a grid.
  explicit CloudLevels(const Box& box) : box_(box) {}

  void add(const Point& point);
  /// Sorts and thins; call it once, after the last point.
  void finish();

  const Box& box() const { return box_; }
  std::uint64_t added() const { return added_; }
  /// True when every point is kept.
  bool isComplete() const { return grids_.empty() || !grids_.front().isFinest; }
  /// Distance of neighbours where it is finest.
  double finestSpacing() const { return finestSpacing_; }

  /// See AcGiPointCloud::visit.
  void visit(const Box& box, double spacing, const AcGiPointCloud::Visitor& visitor) const;

 private:
  /// Cells of `cell` units a side over the box, row by row from its lower left corner.
  struct Grid {
    double cell = 1;
    std::int64_t columns = 1;
    std::int64_t rows = 1;
    bool isFinest = false;
    std::vector<Point> points;

    Grid(const Box& box, double cellSize);
    size_t size() const { return static_cast<size_t>(columns * rows); }
    std::int64_t columnOf(const Box& box, double x) const;
    std::int64_t rowOf(const Box& box, double y) const;
    size_t cellOf(const Box& box, const Point& point) const;
  };

  double cellFor(double count) const;
  void keepHighest(Grid& grid, const Point& point) const;
  void sortAll();
  void addCoarserGrids(double cell);
  void visitAll(const Box& box, const AcGiPointCloud::Visitor& visitor) const;
  void visitGrid(const Grid& grid, const Box& box, const AcGiPointCloud::Visitor& visitor) const;

  Box box_;
  std::uint64_t added_ = 0;
  double finestSpacing_ = 1;
  std::vector<Point> all_;             ///< sorted by cell of `order_`
  std::vector<Grid> order_;            ///< one grid without points, or none
  std::vector<std::uint32_t> starts_;  ///< of each cell in all_, and the end
  std::vector<Grid> grids_;            ///< from fine to coarse
};

}  // namespace tarn::host
