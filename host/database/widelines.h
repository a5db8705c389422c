// Lines that have a width.
#pragma once

#include <vector>

#include "gepnt3d.h"

namespace tarn::host {

/// The middle of a line, flat, whose width goes evenly from the one to the other.
struct WideSegment {
  std::vector<AcGePoint3d> points;
  double startWidth = 0;
  double endWidth = 0;
};

/// The areas of those that are wide. Where neighbours meet with the same width their edges are
/// joined, except at very sharp corners; `closed` joins the last to the first.
std::vector<std::vector<AcGePoint3d>> wideAreas(const std::vector<WideSegment>& segments,
                                                bool closed);

}  // namespace tarn::host
