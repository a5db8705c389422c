#include "host/database/widelines.h"

#include <algorithm>
#include <cmath>

#include "gevec3d.h"

namespace tarn::host {

namespace {

/// A mitre reaches no farther from its corner than so many half widths.
constexpr double kLongestMitre = 10;

bool isWide(const WideSegment& segment) {
  return segment.points.size() > 1 && (segment.startWidth > 0 || segment.endWidth > 0);
}

/// To the left of the way from a to b; no length when they are the same.
AcGeVector3d leftOf(const AcGePoint3d& a, const AcGePoint3d& b) {
  const AcGeVector3d along = b - a;
  return AcGeVector3d(-along.y, along.x, 0).normal();
}

/// Where the left edges of two pieces of one arc meet, for half a width of 1.
AcGeVector3d joint(const AcGeVector3d& before, const AcGeVector3d& after) {
  const AcGeVector3d sum = before + after;
  const double cosine = sum.length() / 2;  // of half the turn
  return cosine > 0 ? sum / (2 * cosine * cosine) : after;
}

/// A point at a place along a segment, and half its width there.
struct Station {
  AcGePoint3d point;
  double half;
};

Station stationOf(const WideSegment& segment, size_t place) {
  const double share = static_cast<double>(place) / static_cast<double>(segment.points.size() - 1);
  return {segment.points[place],
          (segment.startWidth + (segment.endWidth - segment.startWidth) * share) / 2};
}

/// One edge of a segment at its end or its start, on the left (side 1) or the right (-1).
struct Edge {
  AcGePoint3d foot;
  AcGeVector3d along;
};

Edge edgeAt(const WideSegment& segment, bool atEnd, double side) {
  const size_t last = segment.points.size() - 1;
  const Station from = stationOf(segment, atEnd ? last - 1 : 0);
  const Station to = stationOf(segment, atEnd ? last : 1);
  const AcGeVector3d left = leftOf(from.point, to.point) * side;
  const AcGePoint3d a = from.point + left * from.half;
  const AcGePoint3d b = to.point + left * to.half;
  return {atEnd ? b : a, b - a};
}

/// Where the edge meets that of the neighbour (null for none); too far out it ends as by itself.
AcGePoint3d cornerOf(const Edge& own, const Edge* other, const AcGePoint3d& vertex, double half) {
  if (other == nullptr) return own.foot;
  const double across = own.along.x * other->along.y - own.along.y * other->along.x;
  constexpr double kStraightOn = 1e-6;  // of the sine of the turn
  if (!(std::fabs(across) > kStraightOn * own.along.length() * other->along.length())) {
    return own.foot;
  }
  const AcGeVector3d apart = other->foot - own.foot;
  const double share = (apart.x * other->along.y - apart.y * other->along.x) / across;
  const AcGePoint3d met = own.foot + own.along * share;
  return met.distanceTo(vertex) <= kLongestMitre * half ? met : own.foot;
}

/// Edges are brought together between straight pieces; arcs end by themselves.
bool isStraight(const WideSegment& segment) {
  return segment.points.size() == 2;
}

/// The edges of both sides at one end, as they meet those of the neighbour.
void addEnd(const WideSegment& segment, const WideSegment* neighbour, bool atEnd,
            std::vector<AcGePoint3d>& left, std::vector<AcGePoint3d>& right) {
  const size_t place = atEnd ? segment.points.size() - 1 : 0;
  const Station here = stationOf(segment, place);
  for (const double side : {1.0, -1.0}) {
    Edge other;
    double half = here.half;
    if (neighbour != nullptr) {
      other = edgeAt(*neighbour, !atEnd, side);
      half = std::max(half, (atEnd ? neighbour->startWidth : neighbour->endWidth) / 2);
    }
    (side > 0 ? left : right)
        .push_back(cornerOf(edgeAt(segment, atEnd, side), neighbour != nullptr ? &other : nullptr,
                            here.point, half));
  }
}

std::vector<AcGePoint3d> areaOf(const WideSegment& segment, const WideSegment* before,
                                const WideSegment* after) {
  const std::vector<AcGePoint3d>& points = segment.points;
  const size_t count = points.size();
  std::vector<AcGePoint3d> area;
  std::vector<AcGePoint3d> right;
  addEnd(segment, before, false, area, right);
  for (size_t i = 1; i + 1 < count; ++i) {
    const Station here = stationOf(segment, i);
    const AcGeVector3d left =
        joint(leftOf(points[i - 1], points[i]), leftOf(points[i], points[i + 1])) * here.half;
    area.push_back(here.point + left);
    right.push_back(here.point - left);
  }
  addEnd(segment, after, true, area, right);
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
    const auto joins = [&](const WideSegment& other) {
      return isWide(other) && isStraight(segment) && isStraight(other);
    };
    areas.push_back(areaOf(segment, hasBefore && joins(before) ? &before : nullptr,
                           hasAfter && joins(after) ? &after : nullptr));
  }
  return areas;
}

}  // namespace tarn::host
