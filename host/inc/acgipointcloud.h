// A cloud of points that an entity hands to the graphics as one: what is drawn is chosen for each
// view anew.
#pragma once

#include <cstddef>
#include <functional>

#include "adesk.h"

class AcGiPointCloud {
 public:
  /// In whole units of the cloud; the drawing call says where they lie.
  struct Point {
    Adesk::Int32 x = 0;
    Adesk::Int32 y = 0;
    Adesk::Int32 z = 0;
    Adesk::UInt32 color = 0;  ///< 0xffRRGGBB; 0 where there is no point
  };
  struct Box {
    double minX = 0;
    double minY = 0;
    double maxX = 0;
    double maxY = 0;
  };
  /// `spacing` is about the distance between neighbours in this run.
  using Visitor = std::function<void(const Point* points, size_t count, double spacing)>;

  AcGiPointCloud() = default;
  AcGiPointCloud(const AcGiPointCloud&) = delete;
  AcGiPointCloud& operator=(const AcGiPointCloud&) = delete;
  virtual ~AcGiPointCloud() = default;

  /// Gives the points inside `box`, and some beside it, thinned to a few in a square of side
  /// `spacing`, the highest of those that are close together. Works on what is in memory.
  virtual void visit(const Box& box, double spacing, const Visitor& visitor) const = 0;
};
