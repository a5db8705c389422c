#include "host/database/widelines.h"

#include <cmath>

#include "gevec3d.h"

namespace tarn::host {

namespace {

/// Least cosine of half the turn at which edges are joined: a mitre of four half widths.
constexpr double kSharpest = 0.25;

bool isWide(const WideSegment& segment) {
  return segment.points.size() > 1 && (segment.startWidth > 0 || segment.endWidth > 0);
}

/// To the left of the way from a to b; no length when they are the same.
AcGeVector3d leftOf(const AcGePoint3d& a, const AcGePoint3d& b) {
  const AcGeVector3d along = b - a;
  return AcGeVector3d(-along.y, along.x, 0).normal();
}

/// Where the left edges of two pieces meet, for half a width of 1.
AcGeVector3d joint(const AcGeVector3d& before, const AcGeVector3d& after, bool isCorner) {
  const AcGeVector3d sum = before + after;
  const double cosine = sum.length() / 2;  // of half the turn
  if (!(cosine > 0) || (isCorner && cosine < kSharpest)) return after;
  return sum / (2 * cosine * cosine);
}

AcGeVector3d firstLeft(const WideSegment& segment) {
  return leftOf(segment.points[0], segment.points[1]);
}

AcGeVector3d lastLeft(const WideSegment& segment) {
  const size_t count = segment.points.size();
  return leftOf(segment.points[count - 2], segment.points[count - 1]);
}

/// The neighbour whose edges go on with this width; null for none.
const WideSegment* joined(const WideSegment* neighbour, double its, double width) {
  return neighbour != nullptr && neighbour->points.size() > 1 && its == width ? neighbour : nullptr;
}

std::vector<AcGePoint3d> areaOf(const WideSegment& segment, const WideSegment* before,
                                const WideSegment* after) {
  const std::vector<AcGePoint3d>& points = segment.points;
  const size_t count = points.size();
  std::vector<AcGePoint3d> area;
  std::vector<AcGePoint3d> right;
  for (size_t i = 0; i < count; ++i) {
    AcGeVector3d left;
    if (i == 0) {
      left = firstLeft(segment);
      if (before != nullptr) left = joint(lastLeft(*before), left, true);
    } else if (i + 1 == count) {
      left = lastLeft(segment);
      // joint() falls back to its second way.
      if (after != nullptr) left = joint(firstLeft(*after), left, true);
    } else {
      left = joint(leftOf(points[i - 1], points[i]), leftOf(points[i], points[i + 1]), false);
    }
    const double share = static_cast<double>(i) / static_cast<double>(count - 1);
    const double half = (segment.startWidth + (segment.endWidth - segment.startWidth) * share) / 2;
    area.push_back(points[i] + left * half);
    right.push_back(points[i] - left * half);
  }
  area.insert(area.end(), right.rbegin(), right.rend());
  return area;
}

}  // namespace

std::vector<std::vector<AcGePoint3d>> wideAreas(const std::vector<WideSegment>& segments,
                                                bool closed) {
  std::vector<std::vector<AcGePoint3d>> areas;
  const size_t count = segments.size();
  for (size_t i = 0; i < count; ++i) {
    const WideSegment& segment = segments[i];
    if (!isWide(segment)) continue;
    const bool hasBefore = i > 0 || closed;
    const bool hasAfter = i + 1 < count || closed;
    const WideSegment& before = segments[(i + count - 1) % count];
    const WideSegment& after = segments[(i + 1) % count];
    areas.push_back(
        areaOf(segment, joined(hasBefore ? &before : nullptr, before.endWidth, segment.startWidth),
               joined(hasAfter ? &after : nullptr, after.startWidth, segment.endWidth)));
  }
  return areas;
}

}  // namespace tarn::host
